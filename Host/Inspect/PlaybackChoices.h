// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

namespace host {

class Player;

// How people like frames to be played, as a line of text: what is kept from run to run. What is read may be anything.
QString playbackChoices(const Player& player);
void setPlaybackChoices(Player& player, const QString& text);

}  // namespace host

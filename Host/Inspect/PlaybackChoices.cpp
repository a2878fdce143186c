// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/PlaybackChoices.h"

#include "Host/Playback/Player.h"

#include <QStringList>

namespace host {

QString playbackChoices(const Player& player) {
  QStringList words;
  words << (player.mode() == PlayMode::EveryFrame ? "every" : "real");
  words << (player.looping() == Looping::Off      ? "off"
            : player.looping() == Looping::Around ? "around"
                                                  : "back-and-forth");
  words << (player.readsAhead() ? "ahead" : "not-ahead");
  words << QString::number(player.cache().budget());
  return words.join(' ');
}

void setPlaybackChoices(Player& player, const QString& text) {
  const QStringList words = text.split(' ');
  if (words.size() != 4) return;
  player.setMode(words[0] == "every" ? PlayMode::EveryFrame : PlayMode::RealTime);
  player.setLooping(words[1] == "off" ? Looping::Off : words[1] == "around" ? Looping::Around : Looping::BackAndForth);
  player.setReadsAhead(words[2] == "ahead");
  if (const qulonglong budget = words[3].toULongLong(); budget > 0) player.setBudget(budget);
}

}  // namespace host

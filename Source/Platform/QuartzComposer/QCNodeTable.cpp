// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCNodeTable.h"

bool QCNodeTable::add(QCNodeEntry entry) {
  if (byName_.contains(entry.name)) {
    return false;
  }
  entries_.push_back(std::make_unique<QCNodeEntry>(std::move(entry)));
  byName_.emplace(entries_.back()->name, entries_.back().get());
  return true;
}

const QCNodeEntry* QCNodeTable::find(std::string_view name) const {
  const auto found = byName_.find(name);
  return found == byName_.end() ? nullptr : found->second;
}

void QCNodeTable::withdraw(std::size_t index) {
  const auto position = entries_.begin() + static_cast<std::ptrdiff_t>(index);
  byName_.erase((*position)->name);
  withdrawn_.push_back(std::move(*position));
  entries_.erase(position);
}

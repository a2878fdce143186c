// SPDX-License-Identifier: BSD-3-Clause
// Before anything is painted: the colors that were chosen last, else those of the system.
(function () {
  let chosen = null;
  try {
    chosen = localStorage.getItem("vorto-theme");
  } catch (error) {
    // Pages that are opened as files may have no memory.
  }
  const wanted = new URLSearchParams(location.search).get("theme");
  if (wanted === "light" || wanted === "dark") chosen = wanted;
  if (chosen) document.documentElement.dataset.theme = chosen;
})();

// SPDX-License-Identifier: BSD-3-Clause
// Menu, light and dark, copying, before and after, search. Every page can be read without it.
"use strict";

const root = document.body.dataset.root;

function on(selector, event, handler) {
  for (const element of document.querySelectorAll(selector)) element.addEventListener(event, handler);
}

// The pages, on narrow screens.
on("button.menu", "click", (event) => {
  const isOpen = document.body.classList.toggle("menu-open");
  event.currentTarget.setAttribute("aria-expanded", String(isOpen));
});
on("nav.pages a", "click", () => document.body.classList.remove("menu-open"));
const here = document.querySelector("nav.pages [aria-current]");
if (here) here.scrollIntoView({ block: "nearest" });
window.scrollTo({ top: location.hash ? window.scrollY : 0 });

// Light and dark.
on("button.theme", "click", () => {
  const html = document.documentElement;
  const isDark = html.dataset.theme ? html.dataset.theme === "dark" : matchMedia("(prefers-color-scheme: dark)").matches;
  html.dataset.theme = isDark ? "light" : "dark";
  try {
    localStorage.setItem("vorto-theme", html.dataset.theme);
  } catch (error) {
    // Chosen for this page alone.
  }
});

// Copying takes the commands of a console without prompts and output, of other blocks everything.
for (const figure of document.querySelectorAll("figure.code")) {
  const commands = [...figure.querySelectorAll(".command")].map((line) => line.textContent.slice(2));
  if (figure.classList.contains("console") && commands.length === 0) continue;
  const button = document.createElement("button");
  button.className = "copy";
  button.textContent = "Copy";
  button.addEventListener("click", async () => {
    const text = commands.length ? commands.join("\n") + "\n" : figure.querySelector("code").textContent;
    try {
      await navigator.clipboard.writeText(text);
      button.textContent = "Copied";
    } catch (error) {
      const range = document.createRange();
      range.selectNodeContents(figure.querySelector("code"));
      getSelection().removeAllRanges();
      getSelection().addRange(range);
      button.textContent = "Selected";
    }
    setTimeout(() => (button.textContent = "Copy"), 1500);
  });
  figure.append(button);
}

// Before and after: a handle on the picture.
for (const slider of document.querySelectorAll(".compare input")) {
  const move = () => slider.parentElement.style.setProperty("--at", slider.value + "%");
  slider.addEventListener("input", move);
  move();
}

// Which heading is being read.
const marks = new Map();
for (const link of document.querySelectorAll("nav.contents a")) {
  const heading = document.getElementById(decodeURIComponent(link.hash.slice(1)));
  if (heading) marks.set(heading, link);
}
function markReading() {
  let current = null;
  for (const heading of marks.keys()) {
    if (heading.getBoundingClientRect().top < 140) current = heading;
  }
  for (const [heading, link] of marks) link.classList.toggle("reading", heading === current);
}
if (marks.size) {
  addEventListener("scroll", markReading, { passive: true });
  markReading();
}

// Search. The index is a script, because pages that are opened as files may not fetch.
const finder = document.querySelector("dialog.finder");
const field = finder.querySelector("input");
const hits = finder.querySelector(".hits");
let chosen = 0;

function loadIndex() {
  if (window.vortoSearch || document.querySelector("script[data-index]")) return;
  const script = document.createElement("script");
  script.src = root + "search-index.js";
  script.dataset.index = "";
  script.addEventListener("load", show);
  document.head.append(script);
}

function openFinder() {
  loadIndex();
  if (!finder.open) finder.showModal();
  field.select();
}

function words(text) {
  return text.toLowerCase().split(/[^\p{L}\p{N}_]+/u).filter(Boolean);
}

// How well an entry fits a word: in the title, in what the title belongs to, in the text.
function worth(entry, word) {
  const title = entry.t.toLowerCase();
  if (title === word) return 100;
  if (title.startsWith(word)) return 60;
  const at = title.indexOf(word);
  if (at > 0) return /[^\p{L}\p{N}]/u.test(title[at - 1]) ? 40 : 25;
  if (entry.p.toLowerCase().includes(word)) return 12;
  if (entry.x.toLowerCase().includes(word)) return 5;
  return 0;
}

const kindWorth = { guide: 8, effect: 8, class: 6, function: 2, value: 0 };

function find(text) {
  const wanted = words(text);
  if (!wanted.length || !window.vortoSearch) return [];
  const found = [];
  for (const entry of window.vortoSearch) {
    let sum = kindWorth[entry.k] || 0;
    let fits = true;
    for (const word of wanted) {
      const value = worth(entry, word);
      if (!value) { fits = false; break; }
      sum += value;
    }
    if (fits) found.push([sum - entry.t.length / 50, entry]);
  }
  return found.sort((a, b) => b[0] - a[0]).slice(0, 30).map((pair) => pair[1]);
}

// Text around the first word that was found, with the words marked.
function excerpt(entry, wanted) {
  const text = entry.x;
  const lower = text.toLowerCase();
  const places = wanted.map((word) => lower.indexOf(word)).filter((place) => place >= 0);
  const start = places.length ? Math.max(0, Math.min(...places) - 40) : 0;
  return (start ? "..." : "") + text.slice(start, start + 140);
}

function marked(parent, text, wanted) {
  const pattern = wanted.map((word) => word.replace(/[.*+?^${}()|[\]\\]/g, "\\$&")).join("|");
  for (const [i, part] of text.split(pattern ? new RegExp(`(${pattern})`, "i") : /$^/).entries()) {
    const node = i % 2 ? document.createElement("mark") : document.createTextNode(part);
    if (i % 2) node.textContent = part;
    parent.append(node);
  }
}

function element(name, className, parent) {
  const made = document.createElement(name);
  made.className = className;
  parent.append(made);
  return made;
}

function show() {
  const wanted = words(field.value);
  hits.replaceChildren();
  chosen = 0;
  for (const entry of find(field.value)) {
    const item = document.createElement("li");
    const link = element("a", entry.k, item);
    link.href = root + entry.u;
    link.addEventListener("click", () => finder.close());
    const title = element("span", "title", link);
    marked(title, entry.t, wanted);
    if (entry.p) element("span", "place", link).textContent = entry.p;
    if (entry.x) marked(element("span", "text", link), excerpt(entry, wanted), wanted);
    hits.append(item);
  }
  if (field.value.trim() && window.vortoSearch && !hits.children.length) {
    const item = element("li", "none", hits);
    item.textContent = `Nothing has "${field.value.trim()}" in it.`;
  }
  choose(0);
}

function choose(place) {
  const links = [...hits.querySelectorAll("a")];
  if (!links.length) return;
  chosen = (place + links.length) % links.length;
  links.forEach((link, i) => link.classList.toggle("chosen", i === chosen));
  links[chosen].scrollIntoView({ block: "nearest" });
}

on("button.search", "click", openFinder);
field.addEventListener("input", show);
field.addEventListener("keydown", (event) => {
  if (event.key === "ArrowDown") choose(chosen + 1);
  else if (event.key === "ArrowUp") choose(chosen - 1);
  else if (event.key === "Enter") {
    const link = hits.querySelectorAll("a")[chosen];
    if (link) link.click();
  } else return;
  event.preventDefault();
});
finder.addEventListener("click", (event) => {
  if (event.target === finder) finder.close();
});
addEventListener("keydown", (event) => {
  const isTyping = /^(INPUT|TEXTAREA|SELECT)$/.test(document.activeElement.tagName);
  if ((event.key === "/" && !isTyping) || (event.key === "k" && (event.ctrlKey || event.metaKey))) {
    event.preventDefault();
    openFinder();
  }
});

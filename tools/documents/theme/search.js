// SPDX-License-Identifier: MIT
// Finds the sections that have all words, in pages that lie in a folder as well as on a server: the texts come as a
// script, because a page that was opened from a folder may not read files.
"use strict";

const base = document.currentScript.dataset.base;
const box = document.getElementById("search");
const input = box.appendChild(document.createElement("input"));
const list = box.appendChild(document.createElement("ul"));
const most = 20;

input.type = "search";
input.placeholder = "Search";
input.setAttribute("aria-label", "Search");
list.setAttribute("aria-live", "polite");

function load() {
  if (document.getElementById("sections")) return;
  const script = document.createElement("script");
  script.id = "sections";
  script.src = base + "/sections.js";
  script.onload = show;
  document.head.append(script);
}

// What a section is worth for a word: more where its title has it, nothing where it is nowhere.
function worth(section, word) {
  if (section.title.toLowerCase().includes(word)) return 10;
  return section.text.toLowerCase().includes(word) ? 1 : 0;
}

function find(words) {
  const found = [];
  for (const section of window.sections) {
    const worths = words.map((word) => worth(section, word));
    if (worths.every(Boolean)) found.push({ section, worth: worths.reduce((sum, one) => sum + one) });
  }
  return found.sort((one, other) => other.worth - one.worth).slice(0, most);
}

function excerpt(text, word) {
  const at = Math.max(0, text.toLowerCase().indexOf(word));
  const begin = Math.max(0, at - 50);
  const before = document.createTextNode((begin ? "… " : "") + text.slice(begin, at));
  const marked = document.createElement("mark");
  marked.textContent = text.toLowerCase().startsWith(word, at) ? text.slice(at, at + word.length) : "";
  return [before, marked, document.createTextNode(text.slice(at + marked.textContent.length, at + 110))];
}

function row({ section }, words) {
  const link = document.createElement("a");
  link.href = base + "/" + section.location;
  link.textContent = section.page === section.title ? section.title : section.page + ": " + section.title;
  link.append(document.createElement("small"));
  link.lastChild.append(...excerpt(section.text, words[0]));
  const item = document.createElement("li");
  item.append(link);
  return item;
}

function nothing() {
  const item = document.createElement("li");
  item.append(document.createElement("p"));
  item.lastChild.textContent = "Nothing found";
  return item;
}

function show() {
  const words = input.value.toLowerCase().split(/\s+/).filter(Boolean);
  if (!window.sections || !words.length) return list.replaceChildren();
  const found = find(words);
  list.replaceChildren(...(found.length ? found.map((one) => row(one, words)) : [nothing()]));
}

input.addEventListener("focus", load);
input.addEventListener("input", show);
document.addEventListener("keydown", (event) => {
  if (event.key === "/" && document.activeElement !== input) {
    event.preventDefault();
    input.focus();
  } else if (event.key === "Escape") {
    list.replaceChildren();
  }
});
document.addEventListener("click", (event) => {
  if (!box.contains(event.target)) list.replaceChildren();
});

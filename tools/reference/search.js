// SPDX-License-Identifier: MIT
// Looks through window.searchIndex: [title, kind, address, text] each. Accents and case do not count;
// all words must be found. "/" goes to the field, arrows and Enter choose.
"use strict";

(() => {
  const field = document.getElementById("search");
  const list = document.getElementById("found");
  const root = document.body.dataset.root;
  // What comes first among names that fit as well, and among texts.
  const kinds = ["class", "member", "mode", "table", "column", "error", "frame", "command", "page", "C++ class", "C++ member"];
  const ofTexts = ["page", "command", "class", "member", "frame", "error", "table", "column", "C++ class", "C++ member", "mode"];
  const most = 40;

  const folded = (text) => text.normalize("NFD").replace(/[\u0300-\u036f]/g, "").toLowerCase();
  let entries = null;
  const index = () => {
    entries ??= window.searchIndex.map(([title, kind, address, text]) =>
      ({ title, kind, address, text, name: folded(title), body: folded(text) }));
    return entries;
  };

  // The smaller the better; -1 for none. The last part of "Class.Member" is a name too.
  const rank = (entry, words) => {
    let worst = 0;
    for (const word of words) {
      const own = entry.name.slice(entry.name.lastIndexOf(".") + 1);
      let found;
      if (entry.name === word || own === word) found = 0;
      else if (entry.name.startsWith(word) || own.startsWith(word)) found = 1;
      else if (entry.name.includes(word)) found = 2;
      else if (entry.body.includes(word)) found = 3;
      else return -1;
      worst = Math.max(worst, found);
    }
    return worst * 100 + (worst === 3 ? ofTexts : kinds).indexOf(entry.kind);
  };

  // Some of the text around the first word.
  const excerpt = (entry, words) => {
    const at = Math.max(0, ...words.map((word) => entry.body.indexOf(word)));
    const begin = at > 60 ? entry.text.lastIndexOf(" ", at - 30) + 1 : 0;
    const text = entry.text.slice(begin, begin + 160);
    return (begin > 0 ? "… " : "") + text + (begin + 160 < entry.text.length ? " …" : "");
  };

  const show = () => {
    const words = folded(field.value).split(/\s+/).filter(Boolean);
    list.replaceChildren();
    if (words.length === 0) return;
    const found = index()
      .map((entry) => [rank(entry, words), entry])
      .filter(([place]) => place >= 0)
      .sort(([a, one], [b, other]) => a - b || one.title.length - other.title.length);
    for (const [, entry] of found.slice(0, most)) {
      const link = document.createElement("a");
      link.href = root + entry.address;
      const part = (tag, text) => {
        const element = document.createElement(tag);
        element.textContent = text;
        link.append(element);
      };
      part("b", entry.title);
      part("i", entry.kind);
      part("span", excerpt(entry, words));
      const item = document.createElement("li");
      item.append(link);
      list.append(item);
    }
    if (found.length !== 0 && found.length <= most) return;
    const item = document.createElement("li");
    item.className = "count";
    item.textContent = found.length === 0 ? "—" : `${most} / ${found.length}`;
    list.append(item);
  };

  field.addEventListener("input", show);
  field.addEventListener("keydown", (event) => {
    if (event.key === "Enter") list.querySelector("a")?.click();
    if (event.key === "Escape") { field.value = ""; show(); }
    if (event.key === "ArrowDown") { event.preventDefault(); list.querySelector("a")?.focus(); }
  });
  list.addEventListener("keydown", (event) => {
    const step = { ArrowDown: "nextElementSibling", ArrowUp: "previousElementSibling" }[event.key];
    if (!step) return;
    event.preventDefault();
    (event.target.closest("li")[step]?.querySelector("a") ?? field).focus();
  });
  document.addEventListener("keydown", (event) => {
    if (event.key === "/" && event.target !== field) { event.preventDefault(); field.focus(); }
  });
  document.addEventListener("click", (event) => {
    if (!event.target.closest(".search") || event.target.closest("#found a")) list.replaceChildren();
  });

  const asked = new URLSearchParams(location.search).get("q");
  if (asked) { field.value = asked; show(); }
})();

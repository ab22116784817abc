// Search over the titles. Case, accents and the like do not count, every word that was typed must be in the title, and
// what was found is marked.
(function (player) {
  'use strict';

  const { byId, element } = player.tools;
  // Letters with a stroke or joined letters, which Unicode does not take apart.
  const PLAIN = { 'ø': 'o', 'ł': 'l', 'đ': 'd', 'ħ': 'h', 'ı': 'i', 'æ': 'ae', 'œ': 'oe', 'ð': 'd', 'þ': 'th' };

  function foldOne(character) {
    const bare = character.normalize('NFKD').replace(/\p{M}+/gu, '').toUpperCase().toLowerCase();
    return bare.replace(/[øłđħıæœðþ]/g, (letter) => PLAIN[letter]);
  }

  /// The folded text, and for each of its units where in the original it came from.
  function fold(original) {
    let text = '';
    const from = [];
    let at = 0;
    for (const character of original) {
      const folded = foldOne(character);
      for (let i = 0; i < folded.length; ++i) from.push(at);
      text += folded;
      at += character.length;
    }
    from.push(original.length);
    return { text, from };
  }

  /// The stretches of the original that the words cover, in order and without overlaps.
  function stretches(folded, words) {
    const found = [];
    for (const word of words) {
      for (let at = folded.text.indexOf(word); at >= 0; at = folded.text.indexOf(word, at + word.length)) {
        const begin = folded.from[at];
        let last = at + word.length;
        while (last < folded.from.length - 1 && folded.from[last] === folded.from[last - 1]) ++last;
        found.push([begin, folded.from[last]]);
      }
    }
    found.sort((one, other) => one[0] - other[0]);
    const joined = [];
    for (const [begin, end] of found) {
      const before = joined[joined.length - 1];
      if (before && begin <= before[1]) before[1] = Math.max(before[1], end); else joined.push([begin, end]);
    }
    return joined;
  }

  function showName(name, title, parts) {
    if (parts.length === 0) {
      name.textContent = title;
      return;
    }
    const pieces = [];
    let at = 0;
    for (const [begin, end] of parts) {
      pieces.push(title.slice(at, begin), element('mark', '', title.slice(begin, end)));
      at = end;
    }
    name.replaceChildren(...pieces, title.slice(at));
  }

  function makeSearch(slides, onOpen) {
    const box = byId('search');
    const { list, rows } = slides;
    let folded = null; // made at the first search, not at the opening of the page
    const none = element('li', 'none', player.texts.noHit);
    const marked = new Set();

    function filter() {
      const words = fold(box.value).text.split(/\s+/u).filter((word) => word !== '');
      let hits = 0;
      if (words.length > 0 && !folded) folded = rows.map((one) => fold(one.entry.title));
      rows.forEach((one, place) => {
        const hit = words.every((word) => folded[place].text.includes(word));
        one.row.hidden = !hit;
        hits += hit ? 1 : 0;
        const parts = hit && words.length > 0 ? stretches(folded[place], words) : [];
        if (parts.length > 0 || marked.has(place)) showName(one.name, one.entry.title, parts);
        if (parts.length > 0) marked.add(place); else marked.delete(place);
      });
      byId('count').textContent = words.length > 0 ? player.texts.hits(hits, rows.length) : player.texts.count(rows.length);
      if (hits === 0 && rows.length > 0) list.append(none); else none.remove();
    }

    const shown = () => rows.filter((one) => !one.row.hidden);

    function onKey(event) {
      if (event.key === 'Escape' && box.value !== '') {
        event.preventDefault();
        box.value = '';
        filter();
      } else if (event.key === 'ArrowDown') {
        event.preventDefault();
        const first = shown()[0];
        if (first) first.button.focus();
      }
    }

    function openFirst(event) {
      event.preventDefault();
      const first = shown()[0];
      if (first && box.value.trim() !== '') onOpen(first.entry.place);
    }

    function moveInList(event) {
      const there = shown();
      const at = there.findIndex((one) => one.button === document.activeElement);
      const targets = { ArrowDown: at + 1, ArrowUp: at - 1, Home: 0, End: there.length - 1 };
      if (at < 0 || event.ctrlKey || event.altKey || event.metaKey || !(event.key in targets)) return;
      event.preventDefault();
      const target = there[targets[event.key]];
      if (target) target.button.focus();
      else if (event.key === 'ArrowUp') box.focus();
    }

    box.placeholder = player.texts.search;
    box.addEventListener('input', filter);
    box.addEventListener('keydown', onKey);
    byId('search-form').addEventListener('submit', openFirst);
    list.addEventListener('keydown', moveInList);
    filter();
    return { focus: () => { box.focus(); box.select(); } };
  }

  player.makeSearch = makeSearch;
})(window.player = window.player || {});

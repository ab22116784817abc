// Small things that every part of the page needs.
(function (player) {
  'use strict';

  const PREFIX = 'kestrum.';
  const memory = new Map();

  /// Titles and names get into the page here and by textContent only: they are text, never markup.
  function element(tag, className, text) {
    const made = document.createElement(tag);
    if (className) made.className = className;
    if (text !== undefined) made.textContent = text;
    return made;
  }

  /// mm:ss, with hours in front when there are any.
  function clock(ms) {
    const seconds = Math.floor(Math.max(ms, 0) / 1000);
    const two = (n) => String(n).padStart(2, '0');
    const hours = Math.floor(seconds / 3600);
    const rest = two(Math.floor(seconds / 60) % 60) + ':' + two(seconds % 60);
    return hours > 0 ? hours + ':' + rest : rest;
  }

  /// A length, to the nearest second as the lecture's data write it.
  const lengthClock = (ms) => clock(1000 * Math.round(ms / 1000));

  /// What the reader's browser remembers. Where it keeps nothing (a private window, a refusing setting), the value holds
  /// until the page is left.
  const store = {
    get(key) {
      try {
        const kept = localStorage.getItem(PREFIX + key);
        if (kept !== null) return kept;
      } catch (refused) { /* the memory below */ }
      return memory.has(key) ? memory.get(key) : null;
    },
    set(key, value) {
      memory.set(key, value);
      try { localStorage.setItem(PREFIX + key, value); } catch (refused) { /* see above */ }
    },
    remove(key) {
      memory.delete(key);
      try { localStorage.removeItem(PREFIX + key); } catch (refused) { /* see above */ }
    },
    /// The keys that begin so, without the prefix that is common to all of ours.
    keys(begin) {
      try {
        return Object.keys(localStorage).filter((key) => key.startsWith(PREFIX + begin))
          .map((key) => key.slice(PREFIX.length));
      } catch (refused) {
        return [...memory.keys()].filter((key) => key.startsWith(begin));
      }
    }
  };

  /// Names a control by its key in the texts: for assistive programs and, as a tip, for everybody.
  function nameControl(control, text) {
    control.setAttribute('aria-label', text);
    control.title = text;
  }

  function setIcon(button, name) {
    button.querySelector('use').setAttribute('href', '#i-' + name);
  }

  const byId = (id) => document.getElementById(id);
  const isCalm = () => window.matchMedia('(prefers-reduced-motion: reduce)').matches;

  player.tools = { byId, element, clock, lengthClock, store, nameControl, setIcon, isCalm };
})(window.player = window.player || {});

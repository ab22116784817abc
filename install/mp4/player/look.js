// Light or dark, decided before anything is drawn: the reader's own choice, else what the system wishes, also when that
// changes in the evening.
(function (player) {
  'use strict';

  const KEY = 'kestrum.look';
  const system = window.matchMedia('(prefers-color-scheme: dark)');
  let chosen = null;
  let watcher = () => {};

  try { chosen = localStorage.getItem(KEY); } catch (refused) { /* a private window keeps nothing */ }

  const isDark = () => chosen === 'dark' || (chosen !== 'light' && system.matches);

  function apply() {
    document.documentElement.dataset.look = isDark() ? 'dark' : 'light';
    watcher(isDark());
  }

  /// Takes the other look. A choice that equals the system's is forgotten, so that the page follows the system again.
  function toggle() {
    const dark = !isDark();
    chosen = dark === system.matches ? null : dark ? 'dark' : 'light';
    try {
      if (chosen) localStorage.setItem(KEY, chosen); else localStorage.removeItem(KEY);
    } catch (refused) { /* the choice holds until the page is left */ }
    apply();
  }

  if (system.addEventListener) system.addEventListener('change', apply);
  apply();
  player.look = { isDark, toggle, watch(told) { watcher = told; told(isDark()); } };
})(window.player = window.player || {});

// Where the reader left off, for each lecture by itself: the key is the folder that the page lies in together with a mark
// of what was published there, so that lectures on one server do not mix and a new lecture starts at its beginning.
(function (player) {
  'use strict';

  const { store } = player.tools;
  const BEGIN = 'place.';
  const EVERY_MS = 5000;
  // Nearer to the beginning or to the end than this, there is nothing to continue.
  const FIRST_MS = 10000;
  const LAST_MS = 10000;
  const MOST = 200; // lectures that are remembered; the oldest are forgotten first

  const keyOf = (lecture) => BEGIN + location.host + location.pathname.replace(/[^/]*$/, '') + '#' + lecture.mark;

  function read(key) {
    try {
      const kept = JSON.parse(store.get(key)) || {};
      return { ms: Number(kept.ms) || 0, day: Number(kept.day) || 0 };
    } catch (unreadable) {
      return { ms: 0, day: 0 };
    }
  }

  function forgetOldest() {
    const keys = store.keys(BEGIN);
    if (keys.length <= MOST) return;
    keys.sort((one, other) => read(one).day - read(other).day);
    for (const key of keys.slice(0, keys.length - MOST)) store.remove(key);
  }

  /// Gives where the reader left off (ms; 0 is the beginning) and, once asked to watch, remembers it.
  function makePlace(lecture) {
    const key = keyOf(lecture);

    function watch(stage) {
      const { video } = stage;
      let savedAt = 0;
      let moved = false; // a page that was only looked at changes nothing

      function save() {
        if (!moved || !(stage.length() > 0)) return;
        const ms = Math.round(video.currentTime * 1000);
        savedAt = performance.now();
        if (ms < FIRST_MS || ms > stage.length() - LAST_MS) {
          store.remove(key);
          return;
        }
        store.set(key, JSON.stringify({ ms, day: Date.now() }));
      }

      video.addEventListener('timeupdate', () => { if (performance.now() - savedAt > EVERY_MS) save(); });
      for (const event of ['play', 'seeking']) video.addEventListener(event, () => { moved = true; });
      for (const event of ['pause', 'seeked']) video.addEventListener(event, save);
      window.addEventListener('pagehide', save);
      document.addEventListener('visibilitychange', save);
      forgetOldest();
    }

    return { left: read(key).ms, watch };
  }

  player.makePlace = makePlace;
})(window.player = window.player || {});

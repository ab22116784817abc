// A small picture of each slide, drawn from the movie itself: a second, silent, unseen player jumps from slide to slide
// while the lecture plays in the first. One picture at a time, only those that are asked for, and none while the lecture
// itself waits for its data. Opened as a file the pictures can be drawn but not read back, so they stay what they are:
// canvases.
(function (player) {
  'use strict';

  const { element } = player.tools;
  const WIDTH = 160; // CSS pixels; twice as many on a fine screen
  const MOST = 150;  // pictures that are kept; the oldest goes first
  // A picture is taken so long after the slide came, when transitions are over; a short slide's from its middle.
  const SETTLED_MS = 1500;
  const PATIENCE_MS = 10000;

  const soon = (act) => window.requestIdleCallback ? requestIdleCallback(act, { timeout: 500 }) : setTimeout(act, 50);

  function makePainter() {
    const painter = document.createElement('video');
    painter.muted = true;
    painter.playsInline = true;
    painter.preload = 'auto';
    painter.setAttribute('aria-hidden', 'true');
    return painter;
  }

  /// Resolves when the painter shows the place; rejects when it cannot.
  function show(painter, ms) {
    return new Promise((shown, failed) => {
      const timer = setTimeout(() => end(failed), PATIENCE_MS);
      const onSeeked = () => { if (painter.readyState >= 2) end(shown); };
      const onError = () => end(failed);
      function end(how) {
        clearTimeout(timer);
        for (const event of ['seeked', 'loadeddata', 'canplay']) painter.removeEventListener(event, onSeeked);
        painter.removeEventListener('error', onError);
        how();
      }
      for (const event of ['seeked', 'loadeddata', 'canplay']) painter.addEventListener(event, onSeeked);
      painter.addEventListener('error', onError);
      painter.currentTime = ms / 1000;
    });
  }

  function draw(painter) {
    const canvas = element('canvas');
    canvas.width = WIDTH * Math.min(Math.ceil(window.devicePixelRatio || 1), 2);
    canvas.height = Math.round(canvas.width * painter.videoHeight / painter.videoWidth);
    const context = canvas.getContext('2d');
    context.imageSmoothingQuality = 'high';
    context.drawImage(painter, 0, 0, canvas.width, canvas.height);
    return canvas;
  }

  function makePictures(lecture, stage) {
    const { video } = stage;
    const made = new Map();
    const wanted = [];
    const watchers = [];
    let painter = null;
    let busy = false;
    let held = false;
    let failures = 0;

    const tell = (place, canvas) => { for (const watcher of watchers) watcher(place, canvas); };

    function keep(place, canvas) {
      made.set(place, canvas);
      tell(place, canvas);
      if (made.size <= MOST) return;
      const oldest = made.keys().next().value;
      made.delete(oldest);
      tell(oldest, null);
    }

    function moment(place) {
      const begin = lecture.entries[place].time;
      const end = Math.min(lecture.end(place), stage.length() || Infinity);
      return begin + Math.max(Math.min(SETTLED_MS, (end - begin) / 2), 0.5);
    }

    async function paintNext() {
      if (busy || held || !painter || wanted.length === 0 || document.hidden || failures > 2) return;
      busy = true;
      const place = wanted.pop();
      try {
        await show(painter, moment(place));
        keep(place, draw(painter));
        failures = 0;
      } catch (failed) {
        ++failures; // The list keeps its numbers instead; after three in a row nobody asks any more.
      }
      busy = false;
      soon(paintNext);
    }

    function hold(yes) {
      held = yes;
      if (!held) soon(paintNext);
    }

    for (const event of ['waiting', 'seeking']) video.addEventListener(event, () => hold(true));
    for (const event of ['playing', 'seeked', 'canplay', 'error']) video.addEventListener(event, () => hold(false));
    document.addEventListener('visibilitychange', () => soon(paintNext));

    return {
      get: (place) => made.get(place),
      /// The newest wish first.
      want(place) {
        if (made.has(place)) return;
        this.forget(place);
        wanted.push(place);
        soon(paintNext);
      },
      forget(place) {
        const at = wanted.indexOf(place);
        if (at >= 0) wanted.splice(at, 1);
      },
      /// told(place, canvas): a picture came, or (null) went.
      watch(told) { watchers.push(told); },
      /// The movie can jump now. A reader who saves data keeps the numbers.
      start() {
        if (navigator.connection && navigator.connection.saveData) return;
        painter = makePainter();
        painter.src = video.currentSrc;
        soon(paintNext);
      }
    };
  }

  player.makePictures = makePictures;
})(window.player = window.player || {});

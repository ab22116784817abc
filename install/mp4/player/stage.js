// The movie: loads it, plays it, jumps in it, and says in a sentence when one of these fails.
(function (player) {
  'use strict';

  // Half a millisecond: a position in whole milliseconds must not fall short of its picture by a rounding.
  const NUDGE = 0.5;
  const BROKE_OFF = [2, 3]; // MediaError: network, decode

  /// A server that cannot answer for a part of a file leaves no place to jump to.
  function canJump(video) {
    if (!/^https?:$/.test(location.protocol) || !Number.isFinite(video.duration)) return true;
    const ranges = video.seekable;
    return ranges.length > 0 && ranges.end(ranges.length - 1) > video.duration / 2;
  }

  async function loadWhole(address, tell) {
    const answer = await fetch(address);
    if (!answer.ok || !answer.body) throw new Error(String(answer.status));
    const all = Number(answer.headers.get('Content-Length'));
    const reader = answer.body.getReader();
    const parts = [];
    let size = 0;
    for (let part = await reader.read(); !part.done; part = await reader.read()) {
      parts.push(part.value);
      size += part.value.length;
      tell(all > 0 ? Math.min(Math.floor(100 * size / all), 100) : 0);
    }
    return URL.createObjectURL(new Blob(parts, { type: 'video/mp4' }));
  }

  /// told: trouble(text, again or nothing), loading(percent; 100 when done), noJump().
  function makeStage(video, lecture, told) {
    let dragged = null;
    let whole = false;
    let ready = () => {};

    const now = () => video.currentTime * 1000 + NUDGE;

    function seek(ms) {
      dragged = null;
      video.currentTime = (Math.max(ms, 0) + NUDGE) / 1000;
    }

    /// For a slider that is being dragged: the newest place, as soon as the place before is shown.
    function seekSoon(ms) {
      if (!video.seeking) seek(ms); else dragged = ms;
    }

    function play() {
      const started = video.play();
      if (started) started.catch(() => { /* refused or broken off: the movie stays paused, its error event tells more */ });
    }

    const toggle = () => { if (video.paused || video.ended) play(); else video.pause(); };

    function swapSource(address) {
      const place = video.currentTime;
      const playing = !video.paused && !video.ended;
      video.src = address;
      video.currentTime = place;
      if (playing) play();
    }

    async function makeJumpable() {
      whole = true;
      try {
        told.loading(0);
        swapSource(await loadWhole(video.currentSrc, told.loading));
        told.loading(100);
      } catch (failed) {
        told.noJump();
      }
    }

    function onMetadata() {
      if (whole || canJump(video)) ready(); else makeJumpable();
    }

    function onError() {
      const code = video.error ? video.error.code : 0;
      if (!BROKE_OFF.includes(code)) {
        told.trouble(player.texts.noMovie(lecture.movie));
        return;
      }
      const place = video.currentTime;
      told.trouble(player.texts.broken, () => { video.load(); video.currentTime = place; play(); });
    }

    function onSeeked() {
      if (dragged !== null) seek(dragged);
    }

    video.addEventListener('loadedmetadata', onMetadata);
    // The cover stands in until there is a picture; then the picture itself is shown, which is the right one also where
    // the lecture does not open at its beginning.
    video.addEventListener('loadeddata', () => video.removeAttribute('poster'));
    video.addEventListener('error', onError);
    video.addEventListener('seeked', onSeeked);
    for (const name of ['preservesPitch', 'mozPreservesPitch', 'webkitPreservesPitch']) {
      if (name in video) video[name] = true;
    }

    /// Leaves an attribute alone that holds what it should already: the page names movie and cover itself, so that the browser
    /// fetches them while it still reads the scripts.
    function setOnce(name, value) {
      if (video.getAttribute(name) !== value) video[name] = value;
    }

    /// begin (ms) is where the lecture opens; onReady is called once the movie can jump.
    function load(begin, onReady) {
      ready = () => { ready = () => {}; onReady(); };
      if (video.readyState < 2) setOnce('poster', lecture.poster);
      setOnce('src', lecture.movie);
      if (begin > 0) seek(begin);
      if (video.error) onError(); else if (video.readyState >= 1) onMetadata();
      if (video.readyState >= 2) video.removeAttribute('poster');
    }

    return { video, now, seek, seekSoon, play, toggle, load, move: (ms) => seek(Math.max(video.currentTime * 1000 + ms, 0)),
      length: () => Number.isFinite(video.duration) ? video.duration * 1000 : 0 };
  }

  player.makeStage = makeStage;
})(window.player = window.player || {});

// The lecture as the page uses it: read once from config.js, whatever is missing there, and never changed. Times are
// milliseconds on the movie's time line.
(function (player) {
  'use strict';

  const text = (value) => value === undefined || value === null ? '' : String(value);

  function readEntry(item, place, numbered, untitled) {
    const given = item || {};
    return {
      place,
      sn: numbered ? text(given.sn) : '',
      title: text(given.title).trim() === '' ? untitled : text(given.title),
      time: Math.max(Number(given.time) || 0, 0),
      indented: text(given.indent) === '1'
    };
  }

  /// A short mark of what was published, so that another lecture at the same address is another lecture.
  function fingerprint(config) {
    let mark = 5381;
    for (const unit of JSON.stringify([config.title, config.duration, config.index])) {
      mark = (mark * 33 + unit.codePointAt(0)) >>> 0;
    }
    return mark.toString(36);
  }

  function readLecture(config, texts) {
    const author = config.author || {};
    const numbered = Number(config.hideSN) !== 1;
    const index = Array.isArray(config.index) ? config.index : [];
    const entries = index.map((item, place) => readEntry(item, place, numbered, texts.untitled));
    const inTime = [...entries].sort((one, other) => one.time - other.time || one.place - other.place);
    const source = (Array.isArray(config.src) && config.src[0]) || {};
    const lecture = {
      title: text(config.title), author: text(author.name), photo: text(author.photo) || 'author.png',
      poster: text(config.poster), width: Number(config.width) || 16, height: Number(config.height) || 9,
      length: text(config.duration), movie: text(source.src) || 'media.mp4', mark: fingerprint(config), numbered, entries
    };

    /// The entry that is on the screen at a time: the last that began by then; before the first there is none.
    lecture.at = (ms) => {
      let low = 0;
      let high = inTime.length;
      while (low < high) {
        const middle = (low + high) >> 1;
        if (inTime[middle].time <= ms) low = middle + 1; else high = middle;
      }
      return low > 0 ? inTime[low - 1].place : -1;
    };

    /// Where an entry ends: at the next later one, or Infinity.
    lecture.end = (place) => {
      const begin = entries[place].time;
      const next = inTime.find((entry) => entry.time > begin);
      return next ? next.time : Infinity;
    };
    return lecture;
  }

  player.readLecture = readLecture;
})(window.player = window.player || {});

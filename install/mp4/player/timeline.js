// The time line below the picture: a slider over the whole lecture, a mark where each slide begins, and above the pointer
// the slide that lies there.
(function (player) {
  'use strict';

  const { byId, element, clock, lengthClock } = player.tools;
  // Half the slider's knob: the slider's ends lie that far inside its box. See player.css.
  const KNOB = 8;
  // Marks nearer to each other than this part of the line would run into one.
  const NEAREST = 0.003;

  function drawMarks(lecture, length) {
    const marks = [];
    let last = 0;
    for (const time of lecture.entries.map((entry) => entry.time).sort((one, other) => one - other)) {
      const part = time / length;
      if (part - last < NEAREST || part >= 1) continue;
      const mark = element('span', 'mark');
      mark.style.insetInlineStart = 100 * part + '%';
      marks.push(mark);
      last = part;
    }
    byId('marks').replaceChildren(...marks);
  }

  function makePeek(lecture, stage, pictures) {
    const box = byId('timeline');
    const peek = byId('peek');
    const [picture, time, title] = peek.children;
    let shown = -2;

    const hide = () => { peek.hidden = true; shown = -2; };

    function showPicture(place) {
      const copyFrom = pictures.get(place);
      picture.replaceChildren();
      if (!copyFrom) { pictures.want(place); return; }
      const copy = element('canvas');
      copy.width = copyFrom.width;
      copy.height = copyFrom.height;
      copy.getContext('2d').drawImage(copyFrom, 0, 0);
      picture.append(copy);
    }

    function show(event) {
      if (peek.contains(event.target)) return;
      const area = box.getBoundingClientRect();
      const part = Math.min(Math.max((event.clientX - area.left - KNOB) / (area.width - 2 * KNOB), 0), 1);
      const ms = part * stage.length();
      if (!(ms >= 0) || stage.length() === 0 || event.pointerType === 'touch') return;
      const place = lecture.at(ms);
      time.textContent = clock(ms);
      peek.hidden = false;
      if (place !== shown) {
        title.textContent = place >= 0 ? lecture.entries[place].title : '';
        if (place >= 0) showPicture(place); else picture.replaceChildren();
        shown = place;
      }
      const half = peek.offsetWidth / 2;
      const left = Math.min(Math.max(event.clientX - area.left, half), area.width - half);
      peek.style.left = left + 'px';
    }

    box.addEventListener('pointermove', show);
    box.addEventListener('pointerleave', hide);
    document.addEventListener('keydown', (event) => { if (event.key === 'Escape') hide(); });
    pictures.watch((place) => { if (place === shown) showPicture(place); });
  }

  /// keys: what the arrow keys and their neighbours do on the slider, by key; the same as on the page.
  function makeTimeline(stage, lecture, pictures, keys) {
    const { video } = stage;
    const slider = byId('seek');
    let drawnFor = 0;

    function describe(ms) {
      const place = lecture.at(ms);
      const slide = place < 0 ? '' : player.texts.atSlide(place + 1, lecture.entries[place].title);
      slider.setAttribute('aria-valuetext', player.texts.at(clock(ms), lengthClock(stage.length())) + slide);
    }

    function show() {
      const length = stage.length();
      if (length > 0 && length !== drawnFor) {
        drawnFor = length;
        slider.max = String(Math.round(length));
        drawMarks(lecture, length);
      }
      const ms = stage.now();
      slider.value = String(Math.round(ms));
      byId('timeline').style.setProperty('--done', length > 0 ? Math.min(100 * ms / length, 100) + '%' : '0%');
      describe(ms);
    }

    for (const event of ['timeupdate', 'seeking', 'seeked', 'durationchange', 'emptied']) video.addEventListener(event, show);
    slider.addEventListener('input', () => stage.seekSoon(Number(slider.value)));
    slider.addEventListener('keydown', (event) => {
      const act = { ...keys, ArrowUp: keys.ArrowRight, ArrowDown: keys.ArrowLeft }[event.key];
      if (!act || event.ctrlKey || event.altKey || event.metaKey) return;
      event.preventDefault();
      act();
    });
    makePeek(lecture, stage, pictures);
    show();
  }

  player.makeTimeline = makeTimeline;
})(window.player = window.player || {});

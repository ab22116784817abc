// The player of a published lecture: shows what config.js says, lets the index drive the movie and the movie drive the
// index. Needs nothing but the files beside it and works without a server. The parts are the scripts in player/; here
// they are put together.
(function (player) {
  'use strict';

  const { byId, clock, nameControl } = player.tools;
  const { texts } = player;

  function applyTexts() {
    document.documentElement.lang = texts.tag;
    for (const place of document.querySelectorAll('[data-text]')) place.textContent = texts[place.dataset.text];
    for (const control of document.querySelectorAll('[data-name]')) nameControl(control, texts[control.dataset.name]);
  }

  function showTrouble(text, again) {
    const box = byId('trouble');
    box.replaceChildren(player.tools.element('p', '', text));
    box.hidden = false;
    if (!again) return;
    const button = player.tools.element('button', 'plain', texts.again);
    button.type = 'button';
    button.addEventListener('click', () => { box.hidden = true; again(); });
    box.append(button);
  }

  /// A sentence below the picture, with at most one thing to do about it; an empty one takes it away.
  function showNotice(text, actText, act) {
    const button = byId('notice-act');
    byId('notice-text').textContent = text;
    byId('notice').hidden = text === '';
    button.hidden = !act;
    button.textContent = act ? actText : '';
    button.onclick = act ? () => { showNotice(''); act(); } : null;
  }

  function showHead(lecture) {
    document.title = lecture.title || document.title;
    byId('title').textContent = lecture.title;
    byId('author').textContent = lecture.author;
    byId('length').textContent = lecture.length;
    const photo = byId('photo');
    photo.addEventListener('error', () => { photo.hidden = true; });
    photo.src = lecture.photo;
    document.documentElement.style.setProperty('--wide', String(lecture.width / lecture.height));
    byId('video').width = lecture.width;
    byId('video').height = lecture.height;
  }

  /// Where the lecture opens: a link's place, else where the reader left off.
  function opening(lecture, place) {
    const linked = player.linkTarget(lecture);
    return linked ? { ...linked, resumed: false } : { ms: place.left, place: -1, resumed: place.left > 0 };
  }

  function makeSteps(stage, lecture, slides) {
    const open = (place) => {
      const entry = lecture.entries[place];
      if (!entry) return;
      stage.seek(entry.time);
      slides.show(place);
    };
    /// Like the button of a music player: back to the slide's begin first, from there to the slide before.
    const previous = () => {
      const place = slides.current();
      const into = place >= 0 ? stage.now() - lecture.entries[place].time : 0;
      open(into > 2000 || place === 0 ? place : place - 1);
    };
    return { open, previous, next: () => open(slides.current() + 1), begin: () => stage.seek(0),
      last: () => open(lecture.entries.length - 1) };
  }

  /// The index follows the movie; where the browser tells of each picture, to the picture.
  function follow(stage, slides) {
    const { video } = stage;
    const look = () => slides.follow(stage.now());
    for (const event of ['timeupdate', 'seeking', 'loadedmetadata']) video.addEventListener(event, look);
    if (!video.requestVideoFrameCallback) return;
    const each = () => { look(); video.requestVideoFrameCallback(each); };
    video.requestVideoFrameCallback(each);
  }

  function setUp(lecture) {
    let steps = null;
    const loading = (percent) => showNotice(percent < 100 ? texts.loading(percent + ' %') : '');
    const stage = player.makeStage(byId('video'), lecture,
      { trouble: showTrouble, loading, noJump: () => showNotice(texts.noJump) });
    const pictures = player.makePictures(lecture, stage);
    const slides = player.makeSlides(lecture, pictures, (place) => steps.open(place));
    steps = makeSteps(stage, lecture, slides);
    const search = player.makeSearch(slides, steps.open);
    const captions = player.makeCaptions(stage.video, window.captions);
    const controls = player.makeControls(stage, lecture, steps);
    const link = player.makeLink(stage, lecture, slides.current);
    const keys = player.makeKeys({ stage, ...steps, ...controls, captions: captions.any ? captions.toggle : null,
      link: link.open, search: search.focus, look: player.look.toggle });
    player.makeTimeline(stage, lecture, pictures, keys.onSlider);
    player.makeQuiz(stage, window.quiz, window.quizLang);
    return { stage, slides, steps, pictures };
  }

  function openLecture(lecture) {
    const { stage, slides, steps, pictures } = setUp(lecture);
    const place = player.makePlace(lecture);
    const start = opening(lecture, place);
    place.watch(stage);
    follow(stage, slides);
    stage.load(start.ms, pictures.start);
    slides.show(start.place >= 0 ? start.place : lecture.at(start.ms));
    if (start.resumed) showNotice(texts.resumed(clock(start.ms)), texts.fromBegin, steps.begin);
    window.addEventListener('hashchange', () => {
      const wanted = player.linkTarget(lecture);
      if (!wanted) return;
      if (wanted.place >= 0) steps.open(wanted.place); else stage.seek(wanted.ms);
    });
  }

  /// The page shows its words once it has them all; whatever asks where something lies comes after this.
  const showPage = () => { document.documentElement.dataset.ready = ''; };

  applyTexts();
  if (typeof window.config !== 'object' || window.config === null) {
    byId('lecture').hidden = true;
    byId('head').hidden = true;
    showTrouble(texts.incomplete);
    showPage();
    return;
  }
  const lecture = player.readLecture(window.config, texts);
  showHead(lecture);
  showPage();
  openLecture(lecture);
})(window.player);

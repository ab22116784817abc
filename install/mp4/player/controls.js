// The buttons below the picture: play, slides, sound, speed, full screen, picture in picture.
(function (player) {
  'use strict';

  const { byId, clock, lengthClock, store, nameControl, setIcon } = player.tools;
  const SPEEDS = [0.5, 0.75, 1, 1.25, 1.5, 1.75, 2, 2.25, 2.5, 2.75, 3];
  const LOUDER = 0.1;
  // In full screen the panel leaves after so long without a hand on mouse or keyboard.
  const IDLE_MS = 3000;

  function setUpPlay(stage) {
    const { video } = stage;
    const show = () => {
      const going = !video.paused && !video.ended;
      setIcon(byId('play'), going ? 'pause' : 'play');
      nameControl(byId('play'), going ? player.texts.pause : player.texts.play);
      if (going) byId('start').hidden = true;
    };
    for (const event of ['play', 'pause', 'ended', 'emptied']) video.addEventListener(event, show);
    byId('play').addEventListener('click', stage.toggle);
    video.addEventListener('click', stage.toggle);
    show();
  }

  function setUpSound(video) {
    const volume = byId('volume');
    const show = () => {
      const silent = video.muted || video.volume === 0;
      setIcon(byId('mute'), silent ? 'muted' : 'sound');
      byId('mute').setAttribute('aria-pressed', String(silent));
      volume.value = String(Math.round(video.muted ? 0 : video.volume * 100));
      volume.style.setProperty('--done', volume.value + '%');
      volume.setAttribute('aria-valuetext', volume.value + ' %');
    };
    const set = (value) => {
      video.volume = Math.min(Math.max(value, 0), 1);
      video.muted = false;
      store.set('volume', String(video.volume));
    };
    const kept = Number(store.get('volume') ?? 1);
    video.volume = kept >= 0 && kept <= 1 ? kept : 1;
    video.addEventListener('volumechange', show);
    volume.addEventListener('input', () => set(Number(volume.value) / 100));
    const mute = () => { if (video.volume === 0) set(0.5); else video.muted = !video.muted; };
    byId('mute').addEventListener('click', mute);
    show();
    return { mute, louder: () => set(video.volume + LOUDER), quieter: () => set(video.volume - LOUDER) };
  }

  function setUpSpeed(video) {
    const choice = byId('speed');
    for (const speed of SPEEDS) choice.append(new Option(speed + ' ×', String(speed)));
    const kept = Number(store.get('speed'));
    choice.value = String(SPEEDS.includes(kept) ? kept : 1);
    const apply = () => { video.defaultPlaybackRate = video.playbackRate = Number(choice.value); };
    const change = () => { apply(); store.set('speed', choice.value); };
    const step = (by) => () => {
      const wanted = choice.selectedIndex + by;
      if (wanted < 0 || wanted >= SPEEDS.length) return;
      choice.selectedIndex = wanted;
      change();
    };
    choice.addEventListener('change', change);
    apply();
    return { faster: step(1), slower: step(-1) };
  }

  function watchIdleness(stage, box) {
    let timer = 0;
    const wake = () => {
      box.classList.remove('idle');
      clearTimeout(timer);
      timer = setTimeout(() => { if (document.fullscreenElement === box && !stage.video.paused) box.classList.add('idle'); },
        IDLE_MS);
    };
    for (const event of ['pointermove', 'pointerdown', 'keydown', 'focusin']) box.addEventListener(event, wake);
    stage.video.addEventListener('pause', wake);
    document.addEventListener('fullscreenchange', wake);
  }

  function setUpFullScreen(stage) {
    const box = byId('stage');
    const { video } = stage;
    const able = document.fullscreenEnabled || typeof video.webkitEnterFullscreen === 'function';
    byId('full').hidden = !able;
    const toggle = () => {
      if (document.fullscreenElement) document.exitFullscreen();
      else if (document.fullscreenEnabled) box.requestFullscreen().catch(() => { /* refused: nothing changes */ });
      else if (able) video.webkitEnterFullscreen();
    };
    byId('full').addEventListener('click', toggle);
    video.addEventListener('dblclick', toggle);
    document.addEventListener('fullscreenchange', () => {
      const inside = document.fullscreenElement === box;
      box.classList.toggle('is-full', inside);
      setIcon(byId('full'), inside ? 'small' : 'full');
      byId('full').setAttribute('aria-pressed', String(inside));
    });
    watchIdleness(stage, box);
    return toggle;
  }

  function setUpWindow(video) {
    const button = byId('window');
    button.hidden = !document.pictureInPictureEnabled;
    const toggle = () => {
      if (!document.pictureInPictureEnabled) return;
      const done = document.pictureInPictureElement ? document.exitPictureInPicture() : video.requestPictureInPicture();
      done.catch(() => { /* no picture yet, or refused: nothing changes */ });
    };
    const show = (open) => () => button.setAttribute('aria-pressed', String(open));
    button.addEventListener('click', toggle);
    video.addEventListener('enterpictureinpicture', show(true));
    video.addEventListener('leavepictureinpicture', show(false));
    show(false)();
    return toggle;
  }

  function setUpClock(stage, lecture) {
    const { video } = stage;
    const show = () => {
      byId('time').textContent = clock(video.currentTime * 1000);
      byId('whole').textContent = stage.length() > 0 ? lengthClock(stage.length()) : lecture.length;
    };
    for (const event of ['timeupdate', 'seeking', 'durationchange', 'emptied']) video.addEventListener(event, show);
    show();
  }

  /// The keys for media that keyboards and headphones have.
  function setUpMediaKeys(lecture, steps) {
    if (!('mediaSession' in navigator) || typeof MediaMetadata !== 'function') return;
    navigator.mediaSession.metadata = new MediaMetadata({ title: lecture.title, artist: lecture.author });
    navigator.mediaSession.setActionHandler('previoustrack', steps.previous);
    navigator.mediaSession.setActionHandler('nexttrack', steps.next);
  }

  /// steps: previous() and next() go from slide to slide. Gives what the keyboard drives as well.
  function makeControls(stage, lecture, steps) {
    setUpPlay(stage);
    setUpClock(stage, lecture);
    setUpMediaKeys(lecture, steps);
    byId('previous').addEventListener('click', steps.previous);
    byId('next').addEventListener('click', steps.next);
    byId('look').addEventListener('click', player.look.toggle);
    player.look.watch((dark) => {
      setIcon(byId('look'), dark ? 'light' : 'dark');
      byId('look').setAttribute('aria-pressed', String(dark));
    });
    return { ...setUpSound(stage.video), ...setUpSpeed(stage.video), full: setUpFullScreen(stage),
      window: setUpWindow(stage.video) };
  }

  player.makeControls = makeControls;
})(window.player = window.player || {});

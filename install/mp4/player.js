// The player of a published lecture: shows what config.js says, lets the index drive the movie and the movie drive the
// index. Needs nothing but the files beside it and works without a server.
(function () {
  'use strict';

  const TEXTS = {
    en: {
      skip: 'Skip to the slides', previous: 'Previous', next: 'Next', speed: 'Speed', slides: 'Slides',
      search: 'Search the slides', untitled: '(without a title)', noHit: 'No slide has this text.',
      count: (n) => n === 1 ? '1 slide' : n + ' slides', hits: (n, all) => n + ' of ' + all,
      now: (sn, all, title) => sn + ' / ' + all + '  ' + title,
      incomplete: 'This publication is not complete: it was cancelled, failed or is still being made. Publish the ' +
        'lecture again.',
      noMovie: 'The movie cannot be played. Check that media.mp4 lies beside this page, and try another browser.'
    },
    zh: {
      skip: '跳到幻灯片目录', previous: '上一张', next: '下一张', speed: '速度', slides: '幻灯片', search: '搜索幻灯片',
      untitled: '(无标题)', noHit: '没有包含此文字的幻灯片。',
      count: (n) => n + ' 张', hits: (n, all) => n + ' / ' + all,
      now: (sn, all, title) => sn + ' / ' + all + '  ' + title,
      incomplete: '此发布不完整:已取消、失败或仍在制作中。请重新发布课程。',
      noMovie: '无法播放视频。请检查 media.mp4 是否与本页在同一文件夹,或换一个浏览器。'
    }
  };
  const SPEEDS = [0.5, 0.75, 1, 1.25, 1.5, 1.75, 2];
  const SKIP_SECONDS = 5;
  // Half a millisecond: a position in whole milliseconds must not fall short of its picture by a rounding.
  const NUDGE = 0.5;
  // After the reader touched the list, it does not scroll by itself for this long.
  const LEAVE_ALONE_MS = 4000;

  const byId = (id) => document.getElementById(id);
  const language = /^zh/i.test(navigator.language || '') ? 'zh' : 'en';
  const texts = TEXTS[language];
  const video = byId('video');
  const list = byId('entries');
  let entries = [];
  let current = -1;
  let touchedAt = -Infinity;

  function element(tag, className, text) {
    const made = document.createElement(tag);
    if (className) made.className = className;
    if (text !== undefined) made.textContent = text;
    return made;
  }

  function clock(ms) {
    const seconds = Math.floor(Math.max(ms, 0) / 1000);
    const two = (n) => String(n).padStart(2, '0');
    const hours = Math.floor(seconds / 3600);
    const rest = two(Math.floor(seconds / 60) % 60) + ':' + two(seconds % 60);
    return hours > 0 ? hours + ':' + rest : rest;
  }

  function showTrouble(text) {
    byId('trouble').textContent = text;
    byId('trouble').hidden = false;
  }

  function applyTexts() {
    document.documentElement.lang = language === 'zh' ? 'zh-Hans' : 'en';
    for (const place of document.querySelectorAll('[data-text]')) place.textContent = texts[place.dataset.text];
    byId('search').placeholder = texts.search;
  }

  function showHead(config) {
    const author = config.author || {};
    document.title = config.title || document.title;
    byId('title').textContent = config.title || '';
    byId('author').textContent = author.name || '';
    byId('length').textContent = config.duration || '';
    const photo = byId('photo');
    photo.addEventListener('error', () => { photo.hidden = true; });
    photo.src = author.photo || 'author.png';
  }

  function showMovie(config) {
    const source = (config.src || [])[0] || { src: 'media.mp4' };
    if (config.width && config.height) {
      video.width = config.width;
      video.height = config.height;
      video.style.aspectRatio = config.width + ' / ' + config.height;
    }
    video.poster = config.poster || '';
    video.addEventListener('error', () => showTrouble(texts.noMovie));
    video.src = source.src;
  }

  // --- The index -----------------------------------------------------------------------------------------------------

  function makeEntry(item, hideNumber) {
    const title = item.title || texts.untitled;
    const time = Math.max(Number(item.time) || 0, 0);
    const row = element('li', item.indent === '1' ? 'indented' : '');
    const button = element('button', 'entry');
    const name = element('span', 'name', title);
    button.type = 'button';
    name.dir = 'auto';
    button.append(element('span', 'number', hideNumber ? '' : item.sn), name, element('span', 'time', clock(time)));
    row.append(button);
    const entry = { row, button, name, title, time, sn: hideNumber ? '' : item.sn };
    button.addEventListener('click', () => { seekTo(entry.time); showCurrent(entries.indexOf(entry)); });
    return entry;
  }

  function buildIndex(config) {
    const hideNumber = Number(config.hideSN) === 1;
    entries = (config.index || []).map((item) => makeEntry(item, hideNumber));
    list.classList.toggle('unnumbered', hideNumber);
    list.append(...entries.map((entry) => entry.row));
    byId('count').textContent = texts.count(entries.length);
  }

  function entryAt(ms) {
    let found = -1;
    for (let i = 0; i < entries.length && entries[i].time <= ms; ++i) found = i;
    return found;
  }

  function scrollToEntry(entry) {
    if (performance.now() - touchedAt < LEAVE_ALONE_MS || list.scrollHeight <= list.clientHeight) return;
    const top = entry.row.offsetTop - list.offsetTop;
    const bottom = top + entry.row.offsetHeight;
    if (top >= list.scrollTop && bottom <= list.scrollTop + list.clientHeight) return;
    const calm = window.matchMedia('(prefers-reduced-motion: reduce)').matches;
    list.scrollTo({ top: Math.max(0, top - list.clientHeight / 3), behavior: calm ? 'auto' : 'smooth' });
  }

  function showCurrent(number) {
    byId('previous').disabled = number < 0;
    byId('next').disabled = number + 1 >= entries.length;
    if (number === current) return;
    if (current >= 0) entries[current].button.removeAttribute('aria-current');
    current = number;
    const entry = entries[current];
    byId('now').textContent = entry ? texts.now(current + 1, entries.length, entry.title) : '';
    if (!entry) return;
    entry.button.setAttribute('aria-current', 'true');
    scrollToEntry(entry);
  }

  function follow() {
    const found = entryAt(video.currentTime * 1000 + NUDGE);
    // Of entries at one place, the one that the reader chose stays current.
    if (found >= 0 && current >= 0 && entries[found].time === entries[current].time) return;
    showCurrent(found);
  }

  function seekTo(ms) {
    video.currentTime = (ms + NUDGE) / 1000;
  }

  function stepTo(number) {
    if (number < 0 || number >= entries.length) return;
    seekTo(entries[number].time);
    showCurrent(number);
  }

  /// Like the button of a music player: back to the slide's begin first, from there to the slide before.
  function stepBack() {
    const into = current >= 0 ? video.currentTime * 1000 - entries[current].time : 0;
    stepTo(into > 2000 || current === 0 ? current : current - 1);
  }

  // --- Search --------------------------------------------------------------------------------------------------------

  const plain = (text) => text.normalize('NFKC').toLocaleLowerCase();

  function showName(entry, wanted) {
    const at = wanted ? entry.title.toLocaleLowerCase().indexOf(wanted) : -1;
    if (at < 0) {
      entry.name.textContent = entry.title;
      return;
    }
    const end = at + wanted.length;
    entry.name.replaceChildren(entry.title.slice(0, at), element('mark', '', entry.title.slice(at, end)),
      entry.title.slice(end));
  }

  function filter() {
    const wanted = plain(byId('search').value.trim());
    let hits = 0;
    for (const entry of entries) {
      const hit = plain(entry.title).includes(wanted);
      entry.row.hidden = !hit;
      hits += hit ? 1 : 0;
      showName(entry, wanted);
    }
    byId('count').textContent = wanted ? texts.hits(hits, entries.length) : texts.count(entries.length);
    showNoHit(hits === 0 && entries.length > 0);
  }

  function showNoHit(show) {
    const old = list.querySelector('.none');
    if (old) old.remove();
    if (show) list.append(element('li', 'none', texts.noHit));
  }

  function openFirstHit(event) {
    event.preventDefault();
    const hit = entries.findIndex((entry) => !entry.row.hidden);
    if (hit >= 0 && byId('search').value.trim() !== '') stepTo(hit);
  }

  // --- Keyboard ------------------------------------------------------------------------------------------------------

  function moveInList(event) {
    const shown = entries.filter((entry) => !entry.row.hidden);
    const at = shown.findIndex((entry) => entry.button === document.activeElement);
    const targets = { ArrowDown: at + 1, ArrowUp: at - 1, Home: 0, End: shown.length - 1 };
    if (at < 0 || !(event.key in targets)) return;
    event.preventDefault();
    const target = shown[targets[event.key]];
    if (target) target.button.focus();
    else if (event.key === 'ArrowUp') byId('search').focus();
  }

  function enterList(event) {
    if (event.key === 'Escape' && event.target.value !== '') {
      event.preventDefault();
      event.target.value = '';
      filter();
    } else if (event.key === 'ArrowDown') {
      const first = entries.find((entry) => !entry.row.hidden);
      if (first) first.button.focus();
      event.preventDefault();
    }
  }

  function pageKey(event) {
    if (event.ctrlKey || event.altKey || event.metaKey || event.shiftKey) return;
    if (event.target !== document.body && event.target !== video) return;
    const onVideo = event.target === video;
    const acts = {
      PageDown: () => stepTo(current + 1),
      PageUp: stepBack,
      ' ': onVideo ? null : () => { if (video.paused) video.play(); else video.pause(); },
      ArrowRight: onVideo ? null : () => { video.currentTime += SKIP_SECONDS; },
      ArrowLeft: onVideo ? null : () => { video.currentTime -= SKIP_SECONDS; }
    };
    if (!acts[event.key]) return;
    event.preventDefault();
    acts[event.key]();
  }

  // --- Speed ---------------------------------------------------------------------------------------------------------

  function readSpeed() {
    try { return Number(localStorage.getItem('kestrum-speed')) || 1; } catch (refused) { return 1; }
  }

  function keepSpeed(speed) {
    try { localStorage.setItem('kestrum-speed', String(speed)); } catch (refused) { /* a private window keeps nothing */ }
  }

  function setUpSpeed() {
    const choice = byId('speed');
    for (const speed of SPEEDS) choice.append(new Option(speed + ' ×', String(speed)));
    const wanted = readSpeed();
    choice.value = String(SPEEDS.includes(wanted) ? wanted : 1);
    const apply = () => { video.playbackRate = video.defaultPlaybackRate = Number(choice.value); };
    choice.addEventListener('change', () => { apply(); keepSpeed(choice.value); });
    apply();
  }

  function connect() {
    for (const event of ['timeupdate', 'seeking', 'loadedmetadata']) video.addEventListener(event, follow);
    byId('previous').addEventListener('click', stepBack);
    byId('next').addEventListener('click', () => stepTo(current + 1));
    byId('search').addEventListener('input', filter);
    byId('search').addEventListener('keydown', enterList);
    byId('search-form').addEventListener('submit', openFirstHit);
    list.addEventListener('keydown', moveInList);
    for (const event of ['pointerdown', 'wheel', 'touchmove', 'keydown'])
      list.addEventListener(event, () => { touchedAt = performance.now(); }, { passive: true });
    document.addEventListener('keydown', pageKey);
  }

  applyTexts();
  if (typeof window.config !== 'object' || window.config === null) {
    byId('lecture').hidden = true;
    byId('head').hidden = true;
    showTrouble(texts.incomplete);
    return;
  }
  showHead(window.config);
  showMovie(window.config);
  buildIndex(window.config);
  setUpSpeed();
  connect();
  follow();
})();

// Links into a lecture: page#slide=12 opens a slide, page?t=95 a time (seconds, or 1:35). Reads them, and makes them for
// the reader to copy.
(function (player) {
  'use strict';

  const { byId, clock } = player.tools;

  /// Seconds from "95", "95.5", "95s", "1:35" or "1:01:35"; NaN from anything else.
  function readTime(text) {
    if (!/^\d{1,6}(:\d{1,2}){0,2}(\.\d+)?s?$/.test(text)) return NaN;
    return text.replace('s', '').split(':').reduce((sum, part) => 60 * sum + Number(part), 0);
  }

  /// Where the address wants to go: {ms, place} with place -1 for a time, or null when it says nothing (sensible).
  function target(lecture) {
    const afterHash = new URLSearchParams(location.hash.slice(1));
    const query = new URLSearchParams(location.search);
    const wanted = (name) => afterHash.get(name) ?? query.get(name) ?? '';
    const slide = /^\d+$/.test(wanted('slide')) ? Number(wanted('slide')) : 0;
    const entry = lecture.entries[slide - 1];
    if (entry) return { ms: entry.time, place: entry.place };
    const time = readTime(wanted('t'));
    return Number.isNaN(time) ? null : { ms: time * 1000, place: -1 };
  }

  /// The page's own address with nothing of ours in it.
  function plainAddress() {
    const address = new URL(location.href);
    address.hash = '';
    for (const name of ['t', 'slide']) address.searchParams.delete(name);
    return address;
  }

  function addressOf(kind, place, seconds) {
    const address = plainAddress();
    if (kind === 'slide') address.hash = 'slide=' + (place + 1);
    if (kind === 'time') address.searchParams.set('t', String(seconds));
    return address.href;
  }

  async function copy(field) {
    field.focus();
    field.select();
    try {
      await navigator.clipboard.writeText(field.value);
      return true;
    } catch (refused) { // An insecure address has no clipboard of this kind.
      return document.execCommand('copy');
    }
  }

  /// current() is the place of the slide on the screen.
  function makeLink(stage, lecture, current) {
    const dialog = byId('link-dialog');
    const field = byId('link-address');
    let place = -1;
    let seconds = 0;

    function show() {
      const chosen = dialog.querySelector('input[name=link]:checked');
      field.value = addressOf(chosen ? chosen.value : 'begin', place, seconds);
      byId('link-said').textContent = '';
    }

    function open() {
      if (dialog.open) return;
      place = current();
      seconds = Math.floor(stage.video.currentTime);
      const entry = lecture.entries[place];
      byId('link-slide-row').hidden = !entry;
      byId('link-slide-text').textContent = entry ? player.texts.linkSlide(place + 1, entry.title) : '';
      byId('link-time-text').textContent = player.texts.linkTime(clock(1000 * seconds));
      byId(entry ? 'link-slide' : 'link-time').checked = true;
      dialog.showModal();
      show();
    }

    async function copyLink() {
      const done = await copy(field);
      byId('link-said').textContent = done ? player.texts.copied : player.texts.copyYourself;
    }

    byId('link-open').addEventListener('click', open);
    byId('link-copy').addEventListener('click', copyLink);
    dialog.addEventListener('change', show);
    return { open };
  }

  player.linkTarget = target;
  player.makeLink = makeLink;
})(window.player = window.player || {});

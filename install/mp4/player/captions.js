// Captions. captions.js beside the page carries them (a page opened as a file may load scripts, but no caption files):
// one object for each language with lang, label and text, the text being a whole .vtt or .srt file. They stand below the
// picture, where they hide nothing of the slide; in full screen, on it.
(function (player) {
  'use strict';

  const { byId, element, store, nameControl } = player.tools;
  const TIMES = /^\s*(?:(\d+):)?(\d{1,2}):(\d{2})[.,](\d{1,3})\s*-->\s*(?:(\d+):)?(\d{1,2}):(\d{2})[.,](\d{1,3})/;

  function seconds([hours, minutes, whole, part]) {
    return Number(hours || 0) * 3600 + Number(minutes) * 60 + Number(whole) + Number('0.' + part);
  }

  /// The cues of a WebVTT or SubRip text: {begin, end (seconds), text}. What is neither is left out.
  function parse(text) {
    const cues = [];
    for (const block of text.replace(/^\uFEFF/, '').replace(/\r\n?/g, '\n').split(/\n{2,}/)) {
      const lines = block.split('\n').filter((line) => line.trim() !== '');
      const at = lines.findIndex((line) => TIMES.test(line));
      if (at < 0 || at > 1) continue;
      const match = TIMES.exec(lines[at]);
      const words = lines.slice(at + 1).join('\n').replace(/\{\\[^}]*\}/g, '').trim();
      const cue = { begin: seconds(match.slice(1, 5)), end: seconds(match.slice(5, 9)), text: words };
      if (words !== '' && cue.end > cue.begin) cues.push(cue);
    }
    return cues;
  }

  function labelOf(given, number) {
    if (given.label) return String(given.label);
    try {
      const name = new Intl.DisplayNames([player.texts.tag], { type: 'language' }).of(String(given.lang));
      if (given.lang && name) return name;
    } catch (noLanguage) { /* a number will do */ }
    return player.texts.track(number);
  }

  /// The tracks of the movie that have at least one cue.
  function addTracks(video, list) {
    const tracks = [];
    for (const given of list) {
      const cues = given && typeof given.text === 'string' ? parse(given.text) : [];
      if (cues.length === 0) continue;
      const label = labelOf(given, tracks.length + 1);
      const track = video.addTextTrack('captions', label, String(given.lang || ''));
      track.mode = 'disabled';
      for (const cue of cues) track.addCue(new VTTCue(cue.begin, cue.end, cue.text));
      tracks.push({ track, label, lang: String(given.lang || '') });
    }
    return tracks;
  }

  /// The browser makes the cue's elements: it knows bold, italic and the like, and leaves everything else out.
  function line(cue, lang) {
    const made = element('p', 'cue');
    made.dir = 'auto';
    if (lang) made.lang = lang;
    made.append(cue.getCueAsHTML());
    return made;
  }

  function makeCaptions(video, list) {
    const tracks = addTracks(video, Array.isArray(list) ? list : []);
    const box = byId('captions');
    const choice = byId('captions-choice');
    const button = byId('captions-toggle');
    let chosen = -1;
    let last = 0;

    function show() {
      const one = tracks[chosen];
      const cues = one ? Array.from(one.track.activeCues || []) : [];
      box.replaceChildren(...cues.map((cue) => line(cue, one.lang)));
    }

    function choose(number) {
      chosen = number;
      if (number >= 0) last = number;
      tracks.forEach((one, at) => { one.track.mode = at === number ? 'hidden' : 'disabled'; });
      byId('stage').classList.toggle('with-captions', number >= 0);
      box.hidden = number < 0;
      button.setAttribute('aria-pressed', String(number >= 0));
      choice.value = String(number);
      show();
    }

    function keep() {
      store.set('captions', chosen < 0 ? '' : tracks[chosen].lang || 'on');
    }

    function toggle() {
      if (tracks.length === 0) return;
      choose(chosen < 0 ? last : -1);
      keep();
    }

    if (tracks.length === 0) return { toggle, any: false };
    for (const one of tracks) one.track.addEventListener('cuechange', () => { if (tracks[chosen] === one) show(); });
    button.hidden = tracks.length !== 1;
    choice.hidden = tracks.length === 1;
    choice.append(new Option(player.texts.noCaptions, '-1'), ...tracks.map((one, at) => new Option(one.label, String(at))));
    nameControl(choice, player.texts.captions);
    button.addEventListener('click', toggle);
    choice.addEventListener('change', () => { choose(Number(choice.value)); keep(); });
    const kept = store.get('captions');
    choose(kept ? Math.max(tracks.findIndex((one) => one.lang === kept), 0) : -1);
    return { toggle, any: true };
  }

  player.makeCaptions = makeCaptions;
  player.parseCaptions = parse;
})(window.player = window.player || {});

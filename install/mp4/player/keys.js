// The keyboard: what each key does, everywhere on the page where it means nothing else, and the list that says so. Keys
// that are one letter or sign can be switched off, for readers whose speech input or hand strikes them by accident.
(function (player) {
  'use strict';

  const { byId, element, store } = player.tools;
  const FAR_MS = 10000;
  const NEAR_MS = 5000;

  /// The table, in the order of the list: keys, the name of the act in the texts, the act.
  function table(acts) {
    const { stage } = acts;
    return [
      [[' ', 'k'], 'play', stage.toggle],
      [['ArrowLeft'], 'back', () => stage.move(-NEAR_MS)],
      [['ArrowRight'], 'on', () => stage.move(NEAR_MS)],
      [['j'], 'farBack', () => stage.move(-FAR_MS)],
      [['l'], 'farOn', () => stage.move(FAR_MS)],
      [['PageUp', 'p'], 'previous', acts.previous],
      [['PageDown', 'n'], 'next', acts.next],
      [['Home'], 'begin', acts.begin],
      [['End'], 'last', acts.last],
      [[','], 'slower', acts.slower],
      [['.'], 'faster', acts.faster],
      [['-'], 'quieter', acts.quieter],
      [['+'], 'louder', acts.louder],
      [['m'], 'mute', acts.mute],
      [['c'], 'captions', acts.captions],
      [['f'], 'full', acts.full],
      [['i'], 'window', acts.window],
      [['y'], 'link', acts.link],
      [['/'], 'search', acts.search],
      [['t'], 'look', acts.look],
      [['?'], 'keys', acts.keys]
    ].filter((row) => row[2]);
  }

  const isSign = (key) => key.length === 1 && key !== ' ';

  /// Whether the focused control has a use of its own for the key.
  function isTaken(target, key) {
    if (!(target instanceof Element)) return false;
    if (target.closest('dialog')) return true;
    if (target.matches('input[type=range]')) return !isSign(key) && key !== ' ';
    if (target.matches('input, select, textarea')) return true;
    return target.matches('button, a') && (key === ' ' || key === 'Enter');
  }

  function fillList(rows) {
    for (const [keys, name] of rows) {
      const term = element('dt');
      keys.forEach((key, at) => {
        if (at > 0) term.append(' ');
        term.append(element('kbd', '', player.texts.keyNames[key] || key.toUpperCase()));
      });
      const pair = element('div', 'pair');
      pair.append(term, element('dd', '', player.texts.acts[name]));
      byId('keys-list').append(pair);
    }
  }

  function makeKeys(acts) {
    const dialog = byId('keys-dialog');
    const single = byId('keys-single');
    const open = () => { if (!dialog.open) dialog.showModal(); };
    const rows = table({ ...acts, keys: open });
    const byKey = new Map(rows.flatMap(([keys, , act]) => keys.map((key) => [key, act])));

    function onKey(event) {
      if (event.defaultPrevented || event.isComposing || event.ctrlKey || event.altKey || event.metaKey) return;
      const key = event.key.length === 1 ? event.key.toLowerCase() : event.key;
      if (event.shiftKey && !/^[/?+]$/.test(key)) return;
      const act = byKey.get(key);
      if (!act || isTaken(event.target, key) || (isSign(key) && !single.checked)) return;
      event.preventDefault();
      act();
    }

    fillList(rows);
    single.checked = store.get('keys') !== 'off';
    single.addEventListener('change', () => store.set('keys', single.checked ? 'on' : 'off'));
    byId('keys-open').addEventListener('click', open);
    document.addEventListener('keydown', onKey);
    const onSlider = ['ArrowLeft', 'ArrowRight', 'PageUp', 'PageDown', 'Home', 'End'];
    return { onSlider: Object.fromEntries(onSlider.map((key) => [key, byKey.get(key)])) };
  }

  player.makeKeys = makeKeys;
})(window.player = window.player || {});

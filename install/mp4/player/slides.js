// The list of the slides: a picture, a number, a title and a time for each; it drives the movie and follows it.
(function (player) {
  'use strict';

  const { byId, element, clock, isCalm } = player.tools;
  // After the reader touched the list, it does not scroll by itself for this long.
  const LEAVE_ALONE_MS = 4000;

  function makeRow(entry) {
    const row = element('li', entry.indented ? 'indented' : '');
    const button = element('button', 'entry');
    const picture = element('span', 'thumb');
    const name = element('span', 'name', entry.title);
    button.type = 'button';
    name.dir = 'auto';
    picture.setAttribute('aria-hidden', 'true');
    button.append(picture, element('span', 'number', entry.sn), name, element('span', 'time', clock(entry.time)));
    row.append(button);
    return { entry, row, button, picture, name };
  }

  function watchPictures(rows, pictures) {
    pictures.watch((place, canvas) => { rows[place].picture.replaceChildren(...(canvas ? [canvas] : [])); });
    if (!('IntersectionObserver' in window)) return;
    const places = new Map(rows.map((row, place) => [row.picture, place]));
    const watcher = new IntersectionObserver((changes) => {
      // Asked for from below, so that the topmost is painted first: the newest wish goes first.
      for (const change of changes.reverse()) {
        const place = places.get(change.target);
        if (change.isIntersecting) pictures.want(place); else pictures.forget(place);
      }
    }, { rootMargin: '100px' });
    for (const row of rows) watcher.observe(row.picture);
  }

  /// onOpen(place) is called when the reader chose an entry.
  function makeSlides(lecture, pictures, onOpen) {
    const list = byId('entries');
    const rows = lecture.entries.map(makeRow);
    let current = -1;
    let touchedAt = -Infinity;

    list.classList.toggle('unnumbered', !lecture.numbered);
    list.append(...rows.map((one) => one.row));
    list.addEventListener('click', (event) => {
      const button = event.target.closest('.entry');
      const place = button ? rows.findIndex((one) => one.button === button) : -1;
      if (place >= 0) onOpen(place);
    });
    for (const event of ['pointerdown', 'wheel', 'touchmove', 'keydown']) {
      list.addEventListener(event, () => { touchedAt = performance.now(); }, { passive: true });
    }
    watchPictures(rows, pictures);

    function scrollTo(row) {
      if (performance.now() - touchedAt < LEAVE_ALONE_MS || list.scrollHeight <= list.clientHeight) return;
      const top = row.offsetTop - list.offsetTop;
      const bottom = top + row.offsetHeight;
      if (top >= list.scrollTop && bottom <= list.scrollTop + list.clientHeight) return;
      list.scrollTo({ top: Math.max(0, top - list.clientHeight / 3), behavior: isCalm() ? 'auto' : 'smooth' });
    }

    function show(place) {
      byId('previous').disabled = place < 0;
      byId('next').disabled = place + 1 >= rows.length;
      if (place === current) return;
      if (current >= 0) rows[current].button.removeAttribute('aria-current');
      current = place;
      const entry = lecture.entries[place];
      byId('now').children[0].textContent = entry ? player.texts.now(place + 1, rows.length) : '';
      byId('now').children[1].textContent = entry ? entry.title : '';
      if (!entry) return;
      rows[place].button.setAttribute('aria-current', 'true');
      scrollTo(rows[place].row);
    }

    /// The movie stands at a time. Of entries at one place, the one that the reader chose stays current.
    function follow(ms) {
      const found = lecture.at(ms);
      if (found >= 0 && current >= 0 && lecture.entries[found].time === lecture.entries[current].time) return;
      show(found);
    }

    show(-1);
    return { list, rows, show, follow, current: () => current };
  }

  player.makeSlides = makeSlides;
})(window.player = window.player || {});

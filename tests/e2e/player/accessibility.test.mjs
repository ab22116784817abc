// WCAG 2.2 AA, as far as a machine can tell; docs/accessibility.md says which test stands for which criterion.
import assert from 'node:assert/strict';
import { createRequire } from 'node:module';
import test from 'node:test';
import { standsAt, until, visit, watch } from './browser.mjs';
import { Publication, SECONDS, TITLES } from './fixture.mjs';

const AXE = createRequire(import.meta.url).resolve('axe-core/axe.min.js');
const CAPTIONS = [{ lang: 'en', label: '', text: 'WEBVTT\n\n00:00.000 --> 00:40.000\nA key frame stands alone.' }];
const QUIZ = [{ time: 10500, question: 'What is in a key frame?', answers: [{ text: 'Changes', right: false },
  { text: 'A whole picture', right: true }] }];

async function violations(page) {
  if (!await page.evaluate(() => 'axe' in window)) await page.addScriptTag({ path: AXE });
  const found = await page.evaluate(() => window.axe.run(document, { preload: false, resultTypes: ['violations'], runOnly: { type: 'tag',
    values: ['wcag2a', 'wcag2aa', 'wcag21a', 'wcag21aa', 'wcag22aa', 'best-practice'] } }));
  assert.ok(found.passes.length > 5, 'the checker has checked');
  return found.violations.flatMap((one) => one.nodes.map((node) => `${one.id}: ${node.target} ${node.failureSummary}`));
}

/** The states of the page that look different, each made from the one before. */
const STATES = {
  'as it opens': async () => {},
  'with captions, a notice and a current slide': async (page) => {
    await page.locator('.entry').nth(2).click();
    await page.keyboard.press('c');
    await until(page, () => document.querySelector('.cue'));
    await page.evaluate(() => {
      document.querySelector('#notice').hidden = false;
      document.querySelector('#notice-text').textContent = 'Continued where you left off.';
    });
  },
  'while searching': async (page) => { await page.fill('#search', 'key frame'); },
  'with nothing found': async (page) => { await page.fill('#search', 'zebra'); },
  'with the list of keys': async (page) => { await page.click('#keys-open'); },
  'with the link': async (page) => {
    await page.keyboard.press('Escape');
    await page.click('#link-open');
    await page.click('#link-copy');
  },
  'with a question': async (page) => {
    await page.keyboard.press('Escape');
    await page.click('#play');
    await page.locator('#quiz-dialog').waitFor();
    await page.locator('#quiz-answers').getByText('Changes').click();
    await page.click('#quiz-submit');
    await page.click('#quiz-show');
  }
};

for (const [look, width, height] of [['light', 1280, 800], ['dark', 1280, 800], ['light', 360, 740], ['dark', 360, 740]]) {
  test(`No violation is found, ${look}, ${width} pixels wide`, async (t) => {
    const page = await watch(t, new Publication({ captions: CAPTIONS, quiz: QUIZ }), { colorScheme: look, width, height });
    for (const [state, bring] of Object.entries(STATES)) {
      await bring(page);
      assert.deepEqual(await violations(page), [], state);
    }
  });
}

test('No violation is found in what the page says when something is missing', async (t) => {
  for (const gone of ['config.js', 'media.mp4']) {
    const publication = new Publication();
    publication.remove(gone);
    const page = await visit(t, publication.address, { blunders: true });
    await until(page, () => !document.querySelector('#trouble').hidden);
    const found = await violations(page);
    assert.deepEqual(found.filter((one) => gone !== 'config.js' || !/^(page-has-heading-one|landmark-one-main|skip-link|region)/.test(one)), []);
  }
});

test('Every control has a role, a name and a state', async (t) => {
  const page = await watch(t, new Publication({ captions: CAPTIONS }));
  for (const [role, name] of [['button', 'Keyboard'], ['button', 'Dark colours'], ['slider', 'Position'], ['button', 'Previous slide'],
    ['button', 'Play'], ['button', 'Next slide'], ['button', 'Mute'], ['slider', 'Volume'], ['combobox', 'Speed'], ['button', 'Captions'],
    ['button', 'Link'], ['button', 'Picture in picture'], ['button', 'Full screen'], ['searchbox', 'Search the slides'],
    ['button', `3 ${TITLES[2]} 00:10`], ['navigation', 'Slides'], ['heading', 'A Lecture'], ['heading', 'Slides'], ['main', ''],
    ['group', 'Playback'], ['region', 'A Lecture']]) {
    const found = page.getByRole(role, { ...(name ? { name, exact: true } : {}) });
    assert.ok(await found.count() >= 1, `${role} "${name}"`);
  }
  await page.locator('.entry').nth(2).click();
  await page.locator('.entry').nth(2).and(page.locator('[aria-current="true"]')).waitFor();
  assert.equal(await page.locator('[aria-current="true"]').count(), 1);
  await page.getByRole('button', { name: 'Mute' }).click();
  await page.getByRole('button', { name: 'Mute', pressed: true }).waitFor();
});

test('A target is at least 24 pixels high and wide, on any screen', async (t) => {
  for (const width of [1280, 360, 320]) {
    const page = await watch(t, new Publication({ captions: CAPTIONS }), { width, height: 740 });
    for (const dialog of ['', '#keys-open', '#link-open']) {
      if (dialog) await page.click(dialog);
      const small = await page.evaluate(() => [...document.querySelectorAll('button, input, select, a:not(.skip)')]
        .filter((one) => one.checkVisibility({ contentVisibilityAuto: true }) && !one.closest('noscript'))
        .map((one) => [one.id || one.className, one.getBoundingClientRect()])
        .filter(([, box]) => box.width < 24 || box.height < 24).map(([name, box]) => `${name} ${box.width}x${box.height}`));
      assert.deepEqual(small, [], `${width} ${dialog}`);
      if (dialog) await page.keyboard.press('Escape');
    }
    await page.context().close();
  }
});

const tooWide = (page) => page.evaluate(() => {
  const out = [...document.querySelectorAll('body *')].filter((one) => one.checkVisibility() && !one.closest('svg') &&
    one.getBoundingClientRect().right > window.innerWidth + 1).map((one) => one.id || one.className || one.tagName);
  return document.documentElement.scrollWidth > window.innerWidth ? ['the page', ...out] : out;
});

test('At 320 pixels nothing is cut off or scrolls sideways, and everything is still there', async (t) => {
  const page = await watch(t, new Publication({ captions: CAPTIONS }), { width: 320, height: 256 });
  assert.deepEqual(await tooWide(page), []);
  for (const id of ['#play', '#previous', '#next', '#seek', '#speed', '#captions-toggle', '#link-open', '#full', '#search', '#keys-open', '#look']) {
    await page.locator(id).scrollIntoViewIfNeeded();
    assert.ok(await page.locator(id).isVisible(), id);
  }
  for (const opener of ['#keys-open', '#link-open']) {
    await page.click(opener);
    assert.deepEqual(await tooWide(page), []);
    await page.keyboard.press('Escape');
  }
});

test('With wider spacing of the text nothing is lost', async (t) => {
  for (const width of [1280, 360]) {
    const page = await watch(t, new Publication({ captions: CAPTIONS }), { width, height: 800 });
    await page.addStyleTag({ content: `* { line-height: 1.5 !important; letter-spacing: 0.12em !important;
      word-spacing: 0.16em !important } p { margin-bottom: 2em !important }` });
    assert.deepEqual(await tooWide(page), []);
    const cut = await page.evaluate(() => [...document.querySelectorAll('h1, h2, .name, .now, .byline, .clock, button')]
      .filter((one) => one.checkVisibility({ contentVisibilityAuto: true }) && (one.scrollHeight > one.clientHeight + 2 || one.scrollWidth > one.clientWidth + 2))
      .map((one) => one.id || one.className));
    assert.deepEqual(cut, []);
    await page.context().close();
  }
});

test('With letters of twice the size nothing is lost', async (t) => {
  const page = await watch(t, new Publication({ captions: CAPTIONS }), { width: 1280, height: 800 });
  await page.addStyleTag({ content: 'html { font-size: 32px }' });
  assert.deepEqual(await tooWide(page), []);
});

test('On a phone the keyboard\'s place is not hidden below the picture that stays on top', async (t) => {
  const titles = Array.from({ length: 30 }, (_, at) => `Slide ${at + 1}`);
  const page = await watch(t, new Publication({ titles }), { width: 360, height: 740 });
  await page.locator('.entry').last().focus();
  for (let step = 0; step < 29; ++step) {
    await page.keyboard.press('ArrowUp');
    const free = await page.evaluate(() => {
      const entry = document.activeElement.getBoundingClientRect();
      const picture = document.querySelector('#picture').getBoundingClientRect();
      return entry.bottom > picture.bottom + 10 && entry.top < window.innerHeight;
    });
    assert.ok(free, `at step ${step}`);
  }
});

/** Contrast of two CSS colours as drawn: through a canvas, so that any notation counts. */
const contrast = (page, pairs) => page.evaluate((all) => {
  const context = document.createElement('canvas').getContext('2d', { willReadFrequently: true });
  const style = getComputedStyle(document.documentElement);
  const light = (name) => {
    context.fillStyle = name.startsWith('--') ? style.getPropertyValue(name).trim() : name;
    context.fillRect(0, 0, 1, 1);
    const [r, g, b] = [...context.getImageData(0, 0, 1, 1).data].map((part) => part / 255)
      .map((part) => part <= 0.04045 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4);
    return 0.2126 * r + 0.7152 * g + 0.0722 * b;
  };
  return all.map(([one, other]) => [light(one), light(other)].sort((a, b) => b - a)).map(([most, least]) => (most + 0.05) / (least + 0.05));
}, pairs);

test('Edges, icons, the focus and the marked entry have a contrast of 3 to 1, text of 4.5 to 1', async (t) => {
  const page = await watch(t, new Publication());
  const shapes = ['--surface', '--ground', '--hover', '--current'].flatMap((ground) => [['--accent', ground], ['--text', ground]])
    .concat([['--edge', '--surface'], ['--edge', '--ground'], ['--muted', '--ground'], ['--muted', '--surface'], ['--accent', '--sunken'],
      ['--on-accent', '--accent']]);
  const texts = ['--surface', '--ground', '--hover'].map((ground) => ['--muted', ground])
    .concat([['--text', '--current'], ['--on-accent', '--accent'], ['--on-found', '--found'], ['--warn-text', '--warn-ground'], ['--warn-text', '--surface']]);
  for (const look of ['light', 'dark']) {
    await page.evaluate((wanted) => { document.documentElement.dataset.look = wanted; }, look);
    for (const [pairs, least] of [[shapes, 3], [texts, 4.5]]) {
      const found = await contrast(page, pairs);
      found.forEach((value, at) => assert.ok(value >= least, `${look}: ${pairs[at]} is ${value.toFixed(2)}`));
    }
  }
});

test('Who wants less motion gets none', async (t) => {
  const page = await watch(t, new Publication(), { reducedMotion: 'reduce' });
  await until(page, () => document.querySelector('.thumb canvas'));
  const moving = await page.evaluate(() => [...document.querySelectorAll('*')].filter((one) => {
    const style = getComputedStyle(one);
    return style.animationName !== 'none' || style.transitionDuration.split(',').some((time) => parseFloat(time) > 0);
  }).length);
  assert.equal(moving, 0);
  const lively = await watch(t, new Publication(), { reducedMotion: 'no-preference' });
  assert.notEqual(await lively.locator('.entry').first().evaluate((one) => getComputedStyle(one).transitionDuration), '0s');
});

test('In the colours of the system the current slide and the time line are still told apart', async (t) => {
  const page = await watch(t, new Publication(), { forcedColors: 'active' });
  await page.locator('.entry').nth(1).click();
  await standsAt(page, SECONDS * 1000, 1);
  const mark = await page.locator('.entry[aria-current]').evaluate((one) => getComputedStyle(one, '::before').backgroundColor);
  const ground = await page.locator('body').evaluate((one) => getComputedStyle(one).backgroundColor);
  assert.notEqual(mark, ground);
});

test('The lecture makes no sound and shows no motion before it is asked to', async (t) => {
  const page = await watch(t, new Publication());
  await page.waitForTimeout(500);
  assert.ok(await page.evaluate(() => [...document.querySelectorAll('video')].every((one) => one.paused && !one.autoplay)));
});

test('The page has a title, a language and landmarks; the order of the page is the order of reading', async (t) => {
  const page = await watch(t, new Publication());
  assert.equal(await page.title(), 'A Lecture');
  assert.equal(await page.evaluate(() => document.documentElement.lang), 'en');
  const order = await page.evaluate(() => ['#head', '#video', '#seek', '#play', '#now', '#search', '#entries'].map((one) => document.querySelector(one))
    .every((one, at, all) => at === 0 || all[at - 1].compareDocumentPosition(one) & Node.DOCUMENT_POSITION_FOLLOWING));
  assert.ok(order);
});

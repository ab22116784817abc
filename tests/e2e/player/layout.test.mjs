// From a phone to a wide screen, and with very long lists. With KESTRUM_SCREENSHOTS=FOLDER the screens are kept there.
import assert from 'node:assert/strict';
import path from 'node:path';
import test from 'node:test';
import { standsAt, until, watch } from './browser.mjs';
import { Publication, TITLES, entriesOf } from './fixture.mjs';

const SCREENS = [[320, 640], [360, 740], [740, 360], [768, 1024], [1024, 768], [1280, 720], [1280, 800], [1920, 1080], [2560, 1440]];

for (const look of ['light', 'dark']) {
  test(`From phone to wide screen the page fits, ${look}`, async (t) => {
    const page = await watch(t, new Publication(), { colorScheme: look });
    await page.locator('.entry').nth(1).click();
    for (const [width, height] of SCREENS) {
      await page.setViewportSize({ width, height });
      await page.evaluate(() => { scrollTo(0, 0); return new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))); });
      const seen = await page.evaluate(() => {
        const box = (name) => document.querySelector(name).getBoundingClientRect();
        return { wide: document.documentElement.scrollWidth, high: document.documentElement.scrollHeight, video: box('#video'),
          now: box('#now'), index: box('#index'), picture: box('#picture') };
      });
      const where = `at ${width}x${height}`;
      assert.ok(seen.wide <= width, `${where} the page is too wide`);
      assert.ok(Math.abs(seen.video.width / seen.video.height - 16 / 9) < 0.02, `${where} the picture is out of shape`);
      if (width >= 900) {
        assert.ok(seen.index.left >= seen.picture.right, `${where} the index is beside the picture`);
        assert.ok(seen.high <= height + 1, `${where} the whole page is on the screen`);
        assert.ok(seen.video.width >= 0.55 * width || seen.video.height >= 0.55 * height, `${where} the picture is large`);
      } else {
        assert.ok(seen.index.top >= seen.now.bottom - 1, `${where} the index is below`);
      }
      if (process.env.KESTRUM_SCREENSHOTS) {
        await page.screenshot({ path: path.join(process.env.KESTRUM_SCREENSHOTS, `${width}x${height}-${look}.png`) });
      }
    }
  });
}

test('The cover is painted alone, and where the movie will be', async (t) => {
  const early = () => document.addEventListener('DOMContentLoaded', () => {
    window.early = { box: document.querySelector('#video').getBoundingClientRect().toJSON(),
      others: ['#head', '.panel', '#index', '#start'].filter((name) => document.querySelector(name).checkVisibility()) };
  });
  for (const [width, height] of SCREENS) {
    const page = await watch(t, new Publication(), { width, height, init: early });
    const { box, others } = await page.evaluate(() => window.early);
    const now = await page.evaluate(() => document.querySelector('#video').getBoundingClientRect().toJSON());
    assert.deepEqual(others, [], `${width}x${height}`);
    for (const side of ['left', 'top', 'width', 'height']) {
      assert.ok(Math.abs(box[side] - now[side]) <= 2, `${width}x${height}: ${side} ${box[side]}, then ${now[side]}`);
    }
  }
});

test('On a phone the picture stays in sight while the reader looks through the slides', async (t) => {
  const titles = Array.from({ length: 40 }, (_, at) => `Slide ${at + 1}`);
  const page = await watch(t, new Publication({ config: { index: entriesOf(titles, 1) } }), { width: 360, height: 740, hasTouch: true, isMobile: true });
  await page.locator('.entry').nth(30).scrollIntoViewIfNeeded();
  const picture = await page.locator('#picture').boundingBox();
  assert.ok(picture.y >= -1 && picture.y < 5);
  await page.locator('.entry').nth(30).tap();
  await until(page, () => document.querySelectorAll('.entry')[30].matches('[aria-current]'));
});

test('A list of five hundred slides costs no more layouts than a short one', async (t) => {
  const counts = [];
  for (const length of [TITLES.length, 500]) {
    const titles = Array.from({ length }, (_, at) => `Slide ${at + 1} of a long lecture`);
    const page = await watch(t, new Publication({ titles }));
    assert.equal(await page.locator('.entry').count(), length);
    const tools = await page.context().newCDPSession(page);
    await tools.send('Performance.enable');
    const layouts = async () => (await tools.send('Performance.getMetrics')).metrics.find((one) => one.name === 'LayoutCount').value;
    await until(page, () => document.querySelectorAll('.thumb canvas').length >= 5);
    const before = await layouts();
    for (const seconds of [1, 2, 3, 4]) {
      await page.evaluate((time) => { document.querySelector('#video').currentTime = time; }, seconds);
      await standsAt(page, seconds * 1000, 1);
    }
    counts.push(await layouts() - before);
  }
  assert.ok(counts[1] <= counts[0] + 40, `${counts}`);
});

test('The first picture and a jump, measured', async (t) => {
  const publication = new Publication();
  const first = [];
  const again = [];
  const jumps = [];
  // The picture that a visitor sees first is the cover, painted as the movie's poster.
  const cover = () => {
    new PerformanceObserver((list) => {
      for (const entry of list.getEntries()) if (entry.element?.id === 'video') window.shown ??= entry.startTime;
    }).observe({ type: 'largest-contentful-paint', buffered: true });
  };
  const shown = async (page) => {
    await until(page, () => window.shown !== undefined);
    return page.evaluate(() => window.shown);
  };
  for (let visit = 0; visit < 5; ++visit) {
    const page = await watch(t, publication, { init: cover });
    first.push(await shown(page));
    await page.goto('about:blank');
    await page.goto(publication.address);
    again.push(await shown(page));
    await until(page, () => document.documentElement.dataset.ready !== undefined);
    for (const place of [3, 6, 1, 5]) {
      jumps.push(await page.evaluate((wanted) => new Promise((done) => {
        const video = document.querySelector('#video');
        const begin = performance.now();
        video.addEventListener('seeked', () => done(performance.now() - begin), { once: true });
        document.querySelectorAll('.entry')[wanted].click();
      }), place));
    }
    await page.context().close();
  }
  const middle = (all) => [...all].sort((one, other) => one - other)[Math.floor(all.length / 2)];
  const told = (all) => `median ${middle(all).toFixed(0)} ms, best ${Math.min(...all).toFixed(0)}, worst ${Math.max(...all).toFixed(0)}`;
  t.diagnostic(`first picture in a browser just started: ${told(first)}`);
  t.diagnostic(`first picture in a browser at work: ${told(again)}`);
  t.diagnostic(`jump to a slide: ${told(jumps)}`);
  assert.ok([...first, ...again, ...jumps].every((ms) => ms > 0));
});

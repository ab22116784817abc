// What is missing or broken is told in a sentence; what is left of the page works.
import assert from 'node:assert/strict';
import fs from 'node:fs';
import test from 'node:test';
import { until, visit, watch } from './browser.mjs';
import { Publication, TITLES } from './fixture.mjs';

const trouble = (page) => page.locator('#trouble');

test('Without its data the publication says that it is not complete', async (t) => {
  const publication = new Publication();
  const config = fs.readFileSync(publication.file('config.js'), 'latin1');
  for (const half of [null, config.slice(0, config.length / 2), 'var config = null', '']) {
    if (half === null) publication.remove('config.js'); else publication.write('config.js', half);
    const page = await visit(t, publication.address, { blunders: true });
    await trouble(page).getByText('This publication is not complete').waitFor();
    assert.ok(!await page.locator('#lecture').isVisible());
    await page.context().close();
  }
});

test('A missing movie is told, and the index can still be read and searched', async (t) => {
  const publication = new Publication();
  publication.remove('media.mp4');
  const page = await visit(t, publication.address, { blunders: true });
  await trouble(page).getByText('The movie cannot be played. Check that media.mp4 lies beside this page').waitFor();
  await page.fill('#search', 'key frame');
  assert.equal(await page.locator('.entry:visible').count(), 2);
  await page.click('#play');
  await page.locator('.entry:visible').first().click();
});

test('A movie that is none is told', async (t) => {
  const publication = new Publication();
  publication.write('media.mp4', 'this is no movie');
  const page = await visit(t, publication.address, { blunders: true });
  await trouble(page).getByText('try another browser').waitFor();
});

test('A movie that breaks off can be tried again', async (t) => {
  const page = await watch(t, new Publication());
  await page.evaluate(() => {
    const video = document.querySelector('#video');
    Object.defineProperty(video, 'error', { value: { code: 2 }, configurable: true });
    video.dispatchEvent(new Event('error'));
    delete video.error;
  });
  await trouble(page).getByText('The movie broke off').waitFor();
  await page.getByRole('button', { name: 'Try again' }).click();
  await until(page, () => !document.querySelector('#video').paused && document.querySelector('#video').currentTime > 0.1);
  assert.ok(!await trouble(page).isVisible());
});

test('A missing photo leaves no broken picture; a missing cover none either', async (t) => {
  const publication = new Publication();
  publication.remove('author.png');
  publication.remove('cover.jpg');
  const page = await watch(t, publication, { blunders: true });
  await until(page, () => document.querySelector('#photo').hidden);
  assert.ok(!await trouble(page).isVisible());
});

test('Missing captions and questions leave the lecture as it is', async (t) => {
  const publication = new Publication();
  publication.remove('captions.js');
  publication.remove('ques_config.js');
  const page = await watch(t, publication, { blunders: true });
  assert.deepEqual(await page.locator('.entry .name').allTextContents(), TITLES);
});

test('Without scripts the page leads to the movie', async (t) => {
  const page = await visit(t, new Publication().address, { javaScriptEnabled: false });
  assert.match(await page.locator('noscript').textContent(), /needs JavaScript/);
});

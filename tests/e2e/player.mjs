// Plays a published page in a real browser, as a visitor would, from the file system.
//
//   node player.mjs PAGE.html EXPECTED.json OUTDIR
//
// EXPECTED.json: {"title": ..., "author": ..., "entries": [titles], "silent": false, "patience_ms": 60000}; a field that
// is missing is not compared. Writes entry-1.png ... (the frame that each entry seeks to, in the movie's size), page-1440x900.png,
// page-390x844.png and page-dark.png into OUTDIR. Prints a summary as JSON; on a failure one sentence a line on
// standard error, and exit code 1.
import { spawnSync } from 'node:child_process';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import { pathToFileURL } from 'node:url';
import { chromium } from 'playwright-core';

const SILENCE_DB = -50;
const BROWSER = process.env.KESTRUM_CHROMIUM || '/usr/bin/chromium';
const FLAGS = ['--no-sandbox', '--disable-gpu', '--no-first-run', '--disable-background-networking',
  '--disable-component-update', '--disable-sync', '--autoplay-policy=no-user-gesture-required',
  // Lets this script read the pictures back; the page itself needs no such leave.
  '--allow-file-access-from-files'];

const [pageFile, expectedFile, outFolder] = process.argv.slice(2);
if (!outFolder) {
  console.error('player.mjs PAGE.html EXPECTED.json OUTDIR');
  process.exit(2);
}
const expected = JSON.parse(fs.readFileSync(expectedFile, 'utf8'));
const PATIENCE = expected.patience_ms ?? 60000; // a bound for a hang on a busy machine, not a measure of speed
const folder = path.dirname(path.resolve(pageFile));
fs.mkdirSync(outFolder, { recursive: true });
const failures = [];

function check(condition, sentence) {
  if (!condition) failures.push(sentence);
  return condition;
}

function equal(actual, wanted, what) {
  check(JSON.stringify(actual) === JSON.stringify(wanted),
    `${what}: expected ${JSON.stringify(wanted)}, found ${JSON.stringify(actual)}`);
}

/** What a visitor's page may not do: fail in a script, or ask for anything but the files beside it. */
function watch(page) {
  page.on('pageerror', (error) => failures.push(`a script failed: ${error.message}`));
  page.on('console', (message) => {
    if (message.type() === 'error') failures.push(`the page complains: ${message.text()}`);
  });
  page.on('request', (request) => {
    const url = request.url();
    check(/^(file|data|blob):/.test(url), `the page asks the network for ${url}`);
  });
}

async function readPage(page) {
  return page.evaluate(() => ({
    title: document.querySelector('#title').textContent,
    author: document.querySelector('#author').textContent,
    trouble: document.querySelector('#trouble').hidden ? '' : document.querySelector('#trouble').textContent,
    entries: [...document.querySelectorAll('.entry .name')].map((name) => name.textContent),
    numbers: [...document.querySelectorAll('.entry .number')].map((number) => number.textContent),
    indented: [...document.querySelectorAll('#entries > li')].map((row) => row.classList.contains('indented')),
    times: (window.config?.index ?? []).map((item) => Number(item.time))
  }));
}

async function waitUntil(page, condition, argument, sentence) {
  try {
    await page.waitForFunction(condition, argument, { timeout: PATIENCE, polling: 50 });
    return true;
  } catch {
    failures.push(sentence);
    return false;
  }
}

async function playSome(page) {
  const start = await page.evaluate(async () => {
    const video = document.querySelector('video');
    video.muted = true; // a machine without a sound card must not hold the clock
    await video.play();
    return video.currentTime;
  });
  const moved = await waitUntil(page, (from) => document.querySelector('video').currentTime > from + 0.4, start,
    'the time of the video does not advance');
  await page.evaluate(() => document.querySelector('video').pause());
  return moved;
}

async function frameOf(page) {
  const data = await page.evaluate(() => {
    const video = document.querySelector('video');
    const canvas = document.createElement('canvas');
    canvas.width = video.videoWidth;
    canvas.height = video.videoHeight;
    canvas.getContext('2d').drawImage(video, 0, 0);
    return canvas.toDataURL('image/png');
  });
  return Buffer.from(data.split(',')[1], 'base64');
}

async function openEntry(page, number, time) {
  await page.locator('.entry').nth(number).click();
  const there = await waitUntil(page, (wanted) => {
    const video = document.querySelector('video');
    return !video.seeking && video.readyState >= 2 && Math.abs(video.currentTime * 1000 - wanted) < 20;
  }, time, `entry ${number + 1} does not seek to ${time} ms`);
  if (!there) return;
  await waitUntil(page, (wanted) => document.querySelectorAll('.entry')[wanted].getAttribute('aria-current') === 'true' &&
    document.querySelectorAll('[aria-current]').length === 1, number, `entry ${number + 1} is not shown as current`);
  await page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))));
  fs.writeFileSync(path.join(outFolder, `entry-${number + 1}.png`), await frameOf(page));
}

/** The index follows the movie. Entries at one place cannot be told apart by it: any of them will do. */
async function checkFollowing(page, times) {
  for (const [number, time] of times.entries()) {
    const later = times.slice(number + 1).find((next) => next > time) ?? time + 100;
    const middle = (time + later) / 2;
    await page.evaluate((ms) => { document.querySelector('video').currentTime = ms / 1000; }, middle);
    await waitUntil(page, (wanted) => !document.querySelector('video').seeking &&
      [...document.querySelectorAll('.entry')].some((entry, at) => entry.getAttribute('aria-current') === 'true' &&
        Number(window.config.index[at].time) === wanted), time,
    `at ${middle} ms another entry than ${number + 1} is current`);
  }
}

async function checkSearch(page, titles) {
  const wanted = titles.find((title) => title.trim() !== '');
  if (!wanted) return;
  const search = page.locator('#search');
  await search.fill(wanted.toUpperCase());
  const shown = await page.locator('.entry:visible .name').allTextContents();
  const hits = titles.filter((title) => title.toLowerCase().includes(wanted.toLowerCase()));
  equal(shown, hits, `searching for "${wanted}"`);
  await search.press('Escape');
  equal(await page.locator('.entry:visible').count(), titles.length, 'entries after the search was cleared');
}

async function checkKeyboard(page, titles) {
  await page.evaluate(() => document.querySelector('#search').focus());
  await page.keyboard.press('ArrowDown');
  const first = await page.evaluate(() => document.activeElement.querySelector('.name')?.textContent);
  equal(first, titles[0], 'the entry that the keyboard reaches first');
  await page.keyboard.press('End');
  await page.keyboard.press('Enter');
  await waitUntil(page, (last) => document.querySelectorAll('.entry')[last].getAttribute('aria-current') === 'true',
    titles.length - 1, 'Enter on the last entry does not open it');
  const names = await page.evaluate(() => [...document.querySelectorAll('button, input, select')]
    .filter((control) => control.checkVisibility())
    .map((control) => (control.getAttribute('aria-label') || control.textContent.trim() ||
      control.labels?.[0]?.textContent || '').trim()));
  check(names.every((name) => name !== ''), 'a control has no name for assistive programs');
}

async function photograph(page, name, width, height) {
  await page.setViewportSize({ width, height });
  await page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))));
  const wide = await page.evaluate(() => document.documentElement.scrollWidth - window.innerWidth);
  check(wide <= 0, `at ${width}x${height} the page is ${wide} pixels too wide`);
  await page.screenshot({ path: path.join(outFolder, name) });
}

function loudness() {
  const result = spawnSync('ffmpeg', ['-hide_banner', '-i', path.join(folder, 'media.mp4'), '-vn', '-af', 'volumedetect',
    '-f', 'null', '-'], { encoding: 'utf8' });
  const match = /max_volume: (-?[\d.]+) dB/.exec(result.stderr);
  return match ? Number(match[1]) : -Infinity;
}

async function visit(page) {
  await page.goto(pathToFileURL(path.resolve(pageFile)).href);
  await page.waitForSelector('html[data-ready]', { state: 'attached', timeout: PATIENCE });
  const seen = await readPage(page);
  equal(seen.trouble, '', 'what the page says is wrong');
  if (expected.title !== undefined) equal(seen.title, expected.title, 'title');
  if (expected.author !== undefined) equal(seen.author, expected.author, 'author');
  if (expected.entries !== undefined) equal(seen.entries, expected.entries, 'entries');
  await waitUntil(page, () => document.querySelector('#photo').naturalWidth > 0, null, 'the photo is not shown');
  if (seen.trouble !== '') return seen;
  const ready = await waitUntil(page, () => document.querySelector('video').readyState >= 1, null,
    'the video does not load');
  if (!ready) return seen;
  seen.duration = await page.evaluate(() => document.querySelector('video').duration);
  await playSome(page);
  for (const [number, time] of seen.times.entries()) await openEntry(page, number, time);
  await checkFollowing(page, seen.times);
  if (seen.entries.length > 0) {
    await checkSearch(page, seen.entries);
    await openEntry(page, Math.min(1, seen.entries.length - 1), seen.times[Math.min(1, seen.times.length - 1)]);
    await photograph(page, 'page-1440x900.png', 1440, 900);
    await photograph(page, 'page-390x844.png', 390, 844);
    await page.emulateMedia({ colorScheme: 'dark' });
    await photograph(page, 'page-dark.png', 1440, 900);
    await checkKeyboard(page, seen.entries);
  }
  return seen;
}

const profile = fs.mkdtempSync(path.join(os.tmpdir(), 'kestrum-browser-'));
let seen = null;
try {
  const context = await chromium.launchPersistentContext(profile,
    { executablePath: BROWSER, headless: true, args: FLAGS, viewport: { width: 1440, height: 900 }, locale: 'en-GB',
      colorScheme: 'light', reducedMotion: 'reduce', timeout: 120000 });
  try {
    const page = context.pages()[0] ?? await context.newPage();
    page.setDefaultTimeout(60000);
    watch(page);
    seen = await visit(page);
  } finally {
    await context.close();
  }
} catch (error) {
  failures.push(error.message);
} finally {
  fs.rmSync(profile, { recursive: true, force: true });
}
const loudest = loudness();
if (expected.silent !== true) check(loudest > SILENCE_DB, `the sound is silent (${loudest} dB at most)`);

console.log(JSON.stringify({ ...seen, loudest_db: Number.isFinite(loudest) ? loudest : null, failures: failures.length }));
for (const sentence of failures) console.error(sentence);
process.exit(failures.length > 0 ? 1 : 0);

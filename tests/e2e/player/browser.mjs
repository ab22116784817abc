// A visitor with a real browser. One browser for all tests of a run, a fresh profile for each visit.
import assert from 'node:assert/strict';
import { after } from 'node:test';
import { chromium } from 'playwright-core';
import { run } from './fixture.mjs';

const BROWSER = process.env.KESTRUM_CHROMIUM || '/usr/bin/chromium';
const FLAGS = ['--no-sandbox', '--disable-gpu', '--no-first-run', '--disable-background-networking',
  '--disable-component-update', '--disable-sync', '--autoplay-policy=no-user-gesture-required', '--mute-audio'];
export const PATIENCE = 60000; // a bound for a hang on a busy machine, not a measure of speed

let browser = null;
after(async () => { if (browser) await browser.close(); });

export async function theBrowser() {
  return browser ??= await chromium.launch({ executablePath: BROWSER, headless: !process.env.BROWSER_ON_SCREEN, args: FLAGS, timeout: 120000 });
}

/**
 * Opens a page and gives Playwright's page once it has its words. When the test ends, the page must not have failed in a script, complained on
 * the console or asked the network for anything; blunders: true lets it.
 */
export async function visit(t, address, { width = 1280, height = 800, blunders = false, init = null, ...context } = {}) {
  const profile = await (await theBrowser()).newContext({ viewport: { width, height }, locale: 'en-GB',
    colorScheme: 'light', reducedMotion: 'reduce', ...context });
  const page = await profile.newPage();
  page.setDefaultTimeout(PATIENCE);
  const problems = [];
  const origin = new URL(address).origin;
  page.on('pageerror', (error) => problems.push(`a script failed: ${error.message}`));
  page.on('console', (message) => { if (message.type() === 'error') problems.push(`the page complains: ${message.text()}`); });
  page.on('request', (request) => {
    const url = request.url();
    if (!/^(file|data|blob):/.test(url) && new URL(url).origin !== origin) problems.push(`the page asks for ${url}`);
  });
  t.after(async () => {
    await profile.close();
    if (!blunders) assert.deepEqual(problems, []);
  });
  if (init) await page.addInitScript(init);
  await page.goto(address);
  if (context.javaScriptEnabled !== false) await page.waitForSelector('html[data-ready]', { state: 'attached' });
  return page;
}

/** The same, once the movie can be jumped in. */
export async function watch(t, publication, { suffix = '', ...options } = {}) {
  const page = await visit(t, publication.address + suffix, options);
  await page.waitForFunction(() => document.querySelector('#video').readyState >= 2);
  return page;
}

export const until = (page, condition, argument) => page.waitForFunction(condition, argument, { polling: 50 });

/** The time (ms) that the movie stands at, once it stands. */
export async function timeOf(page) {
  await until(page, () => { const video = document.querySelector('#video'); return !video.seeking && video.readyState >= 2; });
  return page.evaluate(() => document.querySelector('#video').currentTime * 1000);
}

export async function standsAt(page, ms, tolerance = 20) {
  await until(page, ([wanted, off]) => {
    const video = document.querySelector('#video');
    return !video.seeking && video.readyState >= 2 && Math.abs(video.currentTime * 1000 - wanted) <= off;
  }, [ms, tolerance]);
}

export const currentTitle = (page) => page.locator('.entry[aria-current="true"] .name').textContent();

export async function play(page) {
  await page.click('#play');
  await until(page, () => { const video = document.querySelector('#video'); return !video.paused && video.currentTime > 0.1; });
}

/** The mean colour (red, green, blue) of what a visitor sees at an element. */
export async function colourOf(page, selector) {
  await page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))));
  const area = await page.locator(selector).first().boundingBox();
  const inner = { x: area.x + area.width / 4, y: area.y + area.height / 8, width: area.width / 2, height: area.height / 8 };
  const picture = await page.screenshot({ clip: inner });
  const { writeFileSync, rmSync, mkdtempSync } = await import('node:fs');
  const folder = mkdtempSync(`${(await import('node:os')).tmpdir()}/kestrum-colour.`);
  writeFileSync(`${folder}/part.png`, picture);
  const pixel = run('ffmpeg', '-v', 'error', '-i', `${folder}/part.png`, '-vf', 'scale=1:1:flags=area', '-frames:v', '1',
    '-f', 'rawvideo', '-pix_fmt', 'rgb24', '-');
  rmSync(folder, { recursive: true });
  return [...pixel];
}

/** Which of the colours (rrggbb) is nearest to a mean colour. */
export function nearest(colour, colours) {
  const far = colours.map((text) => [0, 2, 4].reduce((sum, at, part) =>
    sum + (parseInt(text.slice(at, at + 2), 16) - colour[part]) ** 2, 0));
  return far.indexOf(Math.min(...far));
}

// The preview of a lecture in a real browser: the program serves the page of a scratch folder and ends with it.
import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import { test } from 'node:test';
import { PATIENCE, theBrowser } from '../player/browser.mjs';
import { COLOURS, SECONDS, makeMovie, run } from '../player/fixture.mjs';

const ROOT = path.resolve(import.meta.dirname ?? path.dirname(new URL(import.meta.url).pathname), '../../..');
const INSTALL = process.env.KESTRUM_INSTALL || path.join(ROOT, 'build', 'release', 'install');
const COUNT = 3;

const root = fs.mkdtempSync(path.join(os.tmpdir(), 'kestrum-preview.'));
process.on('exit', () => fs.rmSync(root, { recursive: true, force: true }));

/** A scratch folder as a command unpacks it, beside a package with a slide of each colour. */
function lecture(name) {
  const folder = path.join(root, name, '_ksproj_ä 课');
  fs.cpSync(path.join(ROOT, 'install', 'encfiles'), folder, { recursive: true });
  fs.cpSync(path.join(ROOT, 'install', 'template', 'default'), folder, { recursive: true });
  const items = COLOURS.slice(0, COUNT).map((_, at) => `<item><title>Slide &lt;${at + 1}&gt;</title><pos>${at * SECONDS * 1000}</pos></item>`);
  fs.writeFileSync(path.join(folder, 'project.ksp'), '<?xml version="1.0" encoding="UTF-8"?>\n<kestrum ver="8.0"><project>' +
    '<abstract><title>Waves &amp; Light</title><author>Anna Keller</author></abstract>' +
    `<configure><photo>photo.gif</photo><showcursor>1</showcursor></configure><index>${items.join('')}</index></project></kestrum>`);
  const packageFile = path.join(root, name, 'lecture.ktr');
  const movie = makeMovie(COLOURS.slice(0, COUNT));
  // The sound begins a little later: its encoder's delay would move the pictures.
  run('ffmpeg', '-v', 'error', '-y', '-i', movie, '-itsoffset', '0.1', '-i', movie, '-map', '0:v', '-map', '1:a', '-c', 'copy',
    '-f', 'matroska', packageFile);
  return { page: path.join(folder, 'index.html'), packageFile };
}

/** The running program: the address that it told, what its browser was asked for, and its end. */
async function preview(t, words, program = path.join(INSTALL, 'ksPreviewer')) {
  const desktop = fs.mkdtempSync(path.join(root, 'desktop.'));
  const asked = path.join(desktop, 'asked');
  fs.writeFileSync(path.join(desktop, 'xdg-open'), `#!/bin/sh\necho "$1" > "${asked}.new" && mv "${asked}.new" "${asked}"\n`, { mode: 0o755 });
  const child = spawn(program, words,
    { env: { ...process.env, PATH: `${desktop}:${process.env.PATH}` }, stdio: ['ignore', 'pipe', 'inherit'] });
  t.after(() => child.kill());
  const ended = new Promise((done) => child.on('exit', (code) => done(code)));
  let told = '';
  const address = await new Promise((done, fail) => {
    child.stdout.on('data', (bytes) => { told += bytes; if (told.includes('\n')) done(told.trim()); });
    ended.then((code) => fail(new Error(`ended with ${code} before it told its address`)));
  });
  return { address, asked, ended };
}

async function open(address) {
  const context = await (await theBrowser()).newContext({ viewport: { width: 1000, height: 700 } });
  const page = await context.newPage();
  page.setDefaultTimeout(PATIENCE);
  const problems = [];
  page.on('pageerror', (error) => problems.push(error.message));
  await page.goto(address);
  return { page, context, problems };
}

const until = async (condition) => {
  for (const end = Date.now() + PATIENCE; !condition(); await new Promise((done) => setTimeout(done, 50))) {
    assert.ok(Date.now() < end, 'nothing happened');
  }
};

test('The preview plays the lecture, jumps to its slides, and ends when its page is closed', async (t) => {
  const { page: file, packageFile } = lecture('plays');
  const { address, asked, ended } = await preview(t, [file, 'default', packageFile]);
  await until(() => fs.existsSync(asked));
  assert.equal(fs.readFileSync(asked, 'utf8').trim(), address, 'the browser gets the address');
  const { page, context, problems } = await open(address);
  await page.waitForFunction(() => document.querySelector('#media').readyState >= 2);
  assert.equal(await page.title(), 'Waves & Light');
  assert.deepEqual(await page.locator('#slides button').allTextContents(), ['Slide <1>', 'Slide <2>', 'Slide <3>']);
  await page.click('#slides li:nth-child(3) button');
  await page.waitForFunction((ms) => {
    const media = document.querySelector('#media');
    return !media.seeking && media.readyState >= 2 && Math.abs(media.currentTime * 1000 - ms) < 20;
  }, 2 * SECONDS * 1000);
  const colour = await page.evaluate(() => {
    const canvas = document.createElement('canvas');
    canvas.width = canvas.height = 1;
    const context2d = canvas.getContext('2d');
    context2d.drawImage(document.querySelector('#media'), 0, 0, 1, 1);
    return [...context2d.getImageData(0, 0, 1, 1).data].slice(0, 3);
  });
  const wanted = COLOURS[2].match(/../g).map((byte) => parseInt(byte, 16));
  colour.forEach((part, at) => assert.ok(Math.abs(part - wanted[at]) < 25, `${colour} is not ${wanted}`));
  await page.screenshot({ path: path.join(process.env.KESTRUM_PICTURES || root, 'preview.png') });
  await page.reload();  // the page is away for a moment, and the program stays
  await page.waitForFunction(() => document.querySelector('#media').readyState >= 2);
  assert.deepEqual(problems, []);
  await context.close();
  assert.equal(await ended, 0);
});

test('Nothing but the folder is served, and only under the name that was told', async (t) => {
  const { page: file, packageFile } = lecture('guards');
  const { address } = await preview(t, [file, 'default', packageFile]);
  const base = new URL('.', address);
  assert.equal((await fetch(new URL('project.ksp', base))).status, 200);
  assert.equal((await fetch(new URL('/index.html', base))).status, 404);
  assert.equal((await fetch(new URL('/project.ksp', base))).status, 404);
  assert.equal((await fetch(new URL('..%2flecture.ktr', base))).status, 404);
  assert.equal((await fetch(new URL('project.ksp', base), { method: 'POST' })).status, 405);
  const part = await fetch(new URL('preview.mp4', base), { headers: { range: 'bytes=4-7' } });
  assert.equal(part.status, 206);
  assert.equal(await part.text(), 'ftyp');
});

test('A package that cannot be shown is told on the page', async (t) => {
  const { page: file } = lecture('missing');
  const { address, ended } = await preview(t, [file, 'default', path.join(root, 'none.ktr')]);
  const { page, context } = await open(address);
  await page.waitForFunction(() => document.querySelector('#message').textContent.includes('There is no package'));
  await context.close();
  assert.equal(await ended, 0);
});

test('What goes wrong is told in the words of the language file', async (t) => {
  const other = fs.mkdtempSync(path.join(root, 'program.'));
  fs.copyFileSync(path.join(INSTALL, 'ksPreviewer'), path.join(other, 'ksPreviewer'));
  const texts = fs.readFileSync(path.join(INSTALL, 'res.xml'), 'utf8');
  fs.writeFileSync(path.join(other, 'res.xml'), texts.replaceAll('There is no package', 'Es gibt kein Paket'));
  const { page: file } = lecture('words');
  const { address } = await preview(t, [file, 'default', path.join(root, 'none.ktr')], path.join(other, 'ksPreviewer'));
  assert.match(new URL(address).searchParams.get('message'), /^Es gibt kein Paket ".*none\.ktr"\.$/);
});

test('Wrong words end the program at once', async (t) => {
  const child = spawn(path.join(INSTALL, 'ksPreviewer'), ['/nowhere/index.html', 'default'], { stdio: 'ignore' });
  assert.equal(await new Promise((done) => child.on('exit', done)), 2);
});

// The same folder behind a web server: one that answers for parts of a file, and one that cannot.
import assert from 'node:assert/strict';
import fs from 'node:fs';
import http from 'node:http';
import path from 'node:path';
import test from 'node:test';
import { colourOf, nearest, standsAt, until, visit } from './browser.mjs';
import { COLOURS, Publication, SECONDS } from './fixture.mjs';

const TYPES = { '.html': 'text/html', '.js': 'text/javascript', '.css': 'text/css', '.mp4': 'video/mp4', '.png': 'image/png',
  '.jpg': 'image/jpeg' };

/** Serves a publication below /lecture/ on the loopback; gives its address. */
async function serve(t, publication, { parts }) {
  const server = http.createServer((request, answer) => {
    const name = path.normalize(decodeURIComponent(new URL(request.url, 'http://x').pathname)).replace(/^\/lecture\//, '') || 'index.html';
    const file = publication.file(name);
    if (!fs.existsSync(file)) { answer.writeHead(404).end(); return; }
    const data = fs.readFileSync(file);
    const type = { 'Content-Type': TYPES[path.extname(file)] || 'application/octet-stream' };
    const range = parts && /^bytes=(\d+)-(\d*)$/.exec(request.headers.range || '');
    if (!range) {
      answer.writeHead(200, { ...type, 'Content-Length': data.length, ...(parts ? { 'Accept-Ranges': 'bytes' } : {}) }).end(data);
      return;
    }
    const last = range[2] ? Number(range[2]) : data.length - 1;
    const part = data.subarray(Number(range[1]), last + 1);
    answer.writeHead(206, { ...type, 'Content-Length': part.length, 'Content-Range': `bytes ${range[1]}-${last}/${data.length}` }).end(part);
  });
  await new Promise((ready) => server.listen(0, '127.0.0.1', ready));
  t.after(() => { server.closeAllConnections(); server.close(); });
  return `http://127.0.0.1:${server.address().port}/lecture/`;
}

test('From a web server the page plays, jumps and shows its pictures', async (t) => {
  const page = await visit(t, await serve(t, new Publication(), { parts: true }) + '#slide=3', { height: 1100 });
  await standsAt(page, 2 * SECONDS * 1000, 1);
  assert.equal(nearest(await colourOf(page, '#video'), COLOURS), 2);
  await page.locator('.entry').nth(6).click();
  await standsAt(page, 6 * SECONDS * 1000, 1);
  await until(page, (all) => document.querySelectorAll('.thumb canvas').length === all, COLOURS.length);
});

test('From a server that cannot answer for parts of a file the movie is loaded whole, and then jumps', async (t) => {
  const page = await visit(t, await serve(t, new Publication(), { parts: false }), { height: 1100 });
  await until(page, () => document.querySelector('#video').src.startsWith('blob:') && document.querySelector('#video').readyState >= 2);
  await page.locator('.entry').nth(6).click();
  await standsAt(page, 6 * SECONDS * 1000, 1);
  assert.equal(nearest(await colourOf(page, '#video'), COLOURS), 6);
  await until(page, (all) => document.querySelectorAll('.thumb canvas').length === all, COLOURS.length);
  assert.ok(!await page.locator('#notice').isVisible());
});

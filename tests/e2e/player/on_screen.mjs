// What a browser has only on a screen: tools/private-screen env BROWSER_ON_SCREEN=1 node --test player/on_screen.mjs
import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import test from 'node:test';
import { until, watch } from './browser.mjs';
import { Publication } from './fixture.mjs';

const windows = () => spawnSync('xwininfo', ['-root', '-tree'], { encoding: 'utf8' }).stdout;

test('Picture in picture is a window of its own, and the button takes it back', async (t) => {
  const page = await watch(t, new Publication());
  assert.doesNotMatch(windows(), /"Picture in picture"/i);
  await page.click('#window');
  await page.locator('#window[aria-pressed="true"]').waitFor();
  await until(page, () => document.pictureInPictureElement?.id === 'video');
  assert.match(windows(), /"Picture in picture"/i);
  await page.click('#window');
  await page.locator('#window[aria-pressed="false"]').waitFor();
  assert.equal(await page.evaluate(() => document.pictureInPictureElement), null);
});

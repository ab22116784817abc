// A picture of a published page as a visitor sees it once the pictures of its slides have come:
//   node tools/page-picture.mjs ADDRESS PICTURE.png
import { createRequire } from 'node:module';

const { chromium } = createRequire(new URL('../tests/e2e/', import.meta.url))('playwright-core');
const [address, picture] = process.argv.slice(2);
const browser = await chromium.launch({ executablePath: '/usr/bin/chromium', args: ['--no-sandbox', '--mute-audio'] });
try {
  const page = await browser.newPage({ viewport: { width: 1280, height: 760 }, colorScheme: 'light' });
  await page.goto(address);
  await page.waitForFunction(() => document.querySelectorAll('.entry').length > 0
    && document.querySelectorAll('.entry canvas').length === document.querySelectorAll('.entry').length, null, { timeout: 120000 });
  await page.screenshot({ path: picture });
} finally {
  await browser.close();
}

// Questions, when ques_config.js has some.
import assert from 'node:assert/strict';
import test from 'node:test';
import { play, timeOf, until, visit, watch } from './browser.mjs';
import { Publication } from './fixture.mjs';

const ITEM = { time: '1000', question: 'What is in a key frame?', type: 'single',
  answers: [{ text: 'Changes only', right: false }, { text: 'A whole picture', right: true }] };
const isPaused = (page) => page.evaluate(() => document.querySelector('#video').paused);

async function untilAsked(page) {
  await play(page);
  await page.locator('#quiz-dialog').waitFor();
  assert.ok(await isPaused(page));
}

test('A question stops the lecture; a right answer is told and the lecture goes on', async (t) => {
  const page = await watch(t, new Publication({ quiz: [ITEM] }));
  await untilAsked(page);
  assert.ok(await timeOf(page) >= 1000);
  assert.equal(await page.locator('#quiz-question').textContent(), ITEM.question);
  await page.click('#quiz-submit');
  await page.getByText('Choose an answer').waitFor();
  await page.getByText('A whole picture').click();
  await page.click('#quiz-submit');
  await page.locator('#quiz-said', { hasText: 'Right' }).waitFor();
  await page.click('#quiz-continue');
  await until(page, () => !document.querySelector('#video').paused);
  await page.evaluate(() => { document.querySelector('#video').currentTime = 0.5; });
  await until(page, () => document.querySelector('#video').currentTime > 2);
  assert.ok(!await page.locator('#quiz-dialog').isVisible(), 'it is asked once');
});

test('A wrong answer is told, and the right one shown on request, by keys alone', async (t) => {
  const page = await watch(t, new Publication({ quiz: [ITEM] }));
  await page.locator('h1').click();
  await page.keyboard.press(' ');
  await page.locator('#quiz-dialog').waitFor();
  await page.keyboard.press('Tab');
  await page.keyboard.press(' ');
  await page.keyboard.press('Enter');
  await page.locator('#quiz-said', { hasText: 'Wrong answer' }).waitFor();
  await page.keyboard.press('Shift+Tab');
  assert.equal(await page.evaluate(() => document.activeElement.id), 'quiz-show');
  await page.keyboard.press('Enter');
  assert.match(await page.locator('.answers .right').textContent(), /A whole picture\s*✓ Right/);
  await page.keyboard.press('Enter');
  await until(page, () => !document.querySelector('#video').paused);
});

test('A question can be put aside to read the slide, skipped, or left by Escape', async (t) => {
  const page = await watch(t, new Publication({ quiz: [ITEM, { ...ITEM, time: 2000 }] }));
  await untilAsked(page);
  await page.click('#quiz-hide');
  assert.ok(!await page.getByText('A whole picture').isVisible());
  await page.getByRole('button', { name: 'Resize' }).click();
  assert.ok(await page.getByText('A whole picture').isVisible());
  await page.click('#quiz-skip');
  await until(page, () => document.querySelector('#video').currentTime > 2 && document.querySelector('#quiz-dialog').open);
  await page.keyboard.press('Escape');
  await until(page, () => !document.querySelector('#video').paused);
});

test('Of several right answers all are wanted', async (t) => {
  const page = await watch(t, new Publication({ quiz: [{ time: 500, question: 'Which?', answers: [{ text: 'One', right: '1' },
    { text: 'Two', right: 0 }, { text: 'Three', right: true }] }] }));
  await untilAsked(page);
  await page.locator('#quiz-answers').getByText('One').click();
  await page.locator('#quiz-answers').getByText('Three').click();
  await page.click('#quiz-submit');
  await page.locator('#quiz-said', { hasText: 'Right' }).waitFor();
});

test('A jump over a question asks nothing; items that are none are left out', async (t) => {
  const page = await watch(t, new Publication({ quiz: [null, { time: 100 }, { time: 'x', question: 'No time?', answers: [{ text: 'a' }] },
    { ...ITEM, question: '</script><b>bold</b>', time: 12000 }] }));
  await page.locator('.entry').nth(2).click();
  await play(page);
  await page.locator('#quiz-dialog').waitFor();
  assert.equal(await page.locator('#quiz-question').textContent(), '</script><b>bold</b>');
});

test('Without questions nothing is asked, whatever quiz is', async (t) => {
  const publication = new Publication();
  publication.write('ques_config.js', 'var quiz = {};var quizLang = null;');
  const page = await visit(t, publication.address);
  await play(page);
});

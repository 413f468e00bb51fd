// The forms: a preference page's change survives a restart of the server, the date/time
// dialog refuses a Julian date out of range with "Invalid JD date", every "Inf" button shows
// its text, and the engine's messages reach the page as a box captioned "Information".
import { test, before, after } from 'node:test';
import assert from 'node:assert/strict';
import { ready, startServer, launchBrowser, openScreen, messageBox, drainMessages } from './harness.mjs';

let server, browser, page;

before(async () => {
  const missing = ready();
  if (missing) throw new Error(missing);
  server = await startServer();
  browser = await launchBrowser();
  page = await browser.context.newPage();
  await page.goto(server.url + '/');
});
after(async () => { await browser?.close(); await server?.cleanup(); });

const select = (label) => page.locator('.row', { has: page.locator('label', { hasText: new RegExp('^' + label.replace(/[.*+?^${}()|[\]\\]/g, '\\$&') + '$') }) }).locator('select');

test('Preference 1/6 to 6/6 walk with Prev and Next and show their Inf texts', async () => {
  await openScreen(page, 'Preferences');
  await page.locator('.form h2', { hasText: 'Preference 1/6' }).waitFor();
  const drives = await select('Scope Drive').locator('option').allTextContents();
  assert.equal(drives[0], 'None');
  assert.equal(drives[5], 'LX200');
  assert.equal(drives[19], 'SkyCommander');
  await page.locator('.group', { hasText: 'Interfaces' }).locator('button.inf').first().click();
  const inf = await messageBox(page);
  assert.ok(inf.detail.length > 10 || inf.title.length > 10, 'the Inf button shows a help text');
  await inf.close();
  for (let n = 2; n <= 6; n++) {
    await page.locator('[data-testid=next]').click();
    await page.locator('.form h2', { hasText: `Preference ${n}/6` }).waitFor();
  }
  // The pages go round: Next after 6/6 is 1/6, Prev before 1/6 is 6/6.
  await page.locator('[data-testid=next]').click();
  await page.locator('.form h2', { hasText: 'Preference 1/6' }).waitFor();
  await page.locator('[data-testid=prev]').click();
  await page.locator('.form h2', { hasText: 'Preference 6/6' }).waitFor();
  await page.locator('[data-testid=prev]').click();
  await page.locator('.form h2', { hasText: 'Preference 5/6' }).waitFor();
});

test('a choice made on Preference 3/6 survives a restart of the server', async () => {
  await page.goto(server.url + '/#/prefs/3');
  await page.locator('.form h2', { hasText: 'Preference 3/6' }).waitFor();
  const step = select('Time Step');
  const entries = await step.locator('option').allTextContents();
  assert.equal(entries[0], '1 mn');
  assert.equal(entries[16], '90 Days');
  await step.selectOption({ label: '1 Hour' });
  await page.locator('[data-testid=ok]').click();
  await page.locator('nav.menus').waitFor();
  await server.restart();
  await page.goto(server.url + '/#/prefs/3');
  await page.locator('.form h2', { hasText: 'Preference 3/6' }).waitFor();
  assert.equal(await select('Time Step').evaluate((s) => s.options[s.selectedIndex].text), '1 Hour');
});

test('the date/time dialog refuses a Julian date out of range', async () => {
  await page.goto(server.url + '/#/datetime');
  const jd = page.locator('input[name=jd], [data-control=jd] input, input[data-control=jd]').first();
  await jd.waitFor();
  await jd.fill('2524593.5');
  await page.locator('button', { hasText: /^JD$/ }).click();
  const box = await messageBox(page);
  assert.equal(box.caption, 'Information');
  assert.match(box.title + box.detail, /Invalid JD date/);
  await box.close();
});

test('an engine failure is shown as a message box of two lines', async () => {
  // A fresh record drives an LX200 on no port: the engine says so.
  await page.goto(server.url + '/#/scope');
  await page.locator('[data-testid=connect]').click();
  const boxes = await drainMessages(page);
  assert.ok(boxes.length >= 1);
  assert.ok(boxes.every((b) => b.caption === 'Information'));
  assert.match(boxes[0].title, /No communication port is selected/);
  assert.equal(await page.locator('[data-testid=scope-status]').textContent(), 'Not connected');
  // A name the finder cannot read: the engine's two lines.
  await page.evaluate(() => { location.hash = '#/finder/Andromeda'; });
  const second = await messageBox(page);
  assert.equal(second.caption, 'Information');
  assert.equal(second.title, 'Unknown object name');
  assert.match(second.detail, /NGC 224, M 31, HIP 91262/);
  await second.close();
});

test('the engine\'s question is asked in the page and its answer goes back', async () => {
  // A saved alignment makes the first telescope request of a run offer to restore it.
  const stars = [
    { name: 'Vega', time: '21:00:00', ra: '18:36:56', dec: '38:47:01', hor: '19:30:00', elv: '38:47:01' },
    { name: 'Arcturus', time: '21:10:00', ra: '14:15:40', dec: '19:10:57', hor: '15:09:00', elv: '19:10:57' },
  ];
  const saved = await fetch(server.url + '/api/align', { method: 'POST', body: JSON.stringify({ stars, toTime: '21:00:00' }) });
  assert.equal(saved.status, 200);
  await server.restart();
  await page.goto(server.url + '/#/scope');
  await page.locator('[data-testid=connect]').click();
  const question = page.locator('.modal.question');
  await question.waitFor();
  assert.match(await question.textContent(), /Would you want to restore your last alignment\?/);
  // The request waits on the engine meanwhile: the progress box offers to stop it.
  const progress = page.locator('.modal-back.progress');
  assert.match(await progress.textContent(), /Press any key to stop\./);
  assert.equal(await progress.locator('button', { hasText: 'Stop' }).count(), 1);
  const answered = page.waitForRequest((r) => r.url().endsWith('/api/answer'));
  await question.locator('button', { hasText: 'No' }).click();
  assert.deepEqual(JSON.parse((await answered).postData()).yes, false);
  const boxes = await drainMessages(page);
  assert.match(boxes[0]?.title || '', /No communication port is selected/);
  assert.equal(await progress.count(), 0, 'the progress box goes with the answer');
});

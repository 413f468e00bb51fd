// Night mode turns every screen dark and red, the chart included: the computed colours of
// every element and the pixels of the screen as shown are sampled, and none is white or
// other than red.
import { test, before, after } from 'node:test';
import assert from 'node:assert/strict';
import { ready, startServer, launchBrowser, drainMessages } from './harness.mjs';

let server, browser, page;

before(async () => {
  const missing = ready();
  if (missing) throw new Error(missing);
  server = await startServer();
  browser = await launchBrowser({ deviceScaleFactor: 1 });
  page = await browser.context.newPage();
  await page.goto(server.url + '/');
  await page.locator('nav.menus').waitFor();
});
after(async () => { await browser?.close(); await server?.cleanup(); });

// Colours of every shown element that are not red: [{element, property, colour}].
function nonRedStyles() {
  return page.evaluate(() => {
    const bad = [];
    const parse = (c) => (c.match(/[\d.]+/g) || []).map(Number);
    for (const node of document.querySelectorAll('body, body *')) {
      if (!node.getClientRects().length) continue;
      const s = getComputedStyle(node);
      for (const prop of ['color', 'background-color', 'border-top-color']) {
        const [r, g, b, a = 1] = parse(s[prop]);
        if (a === 0 || (prop === 'border-top-color' && s.borderTopWidth === '0px')) continue;
        if (g > r * 0.45 + 6 || b > r * 0.45 + 6)
          bad.push(`${node.tagName.toLowerCase()}.${node.className} ${prop} ${s[prop]}`);
      }
    }
    return bad;
  });
}

// Pixels of the screen as shown that are white or not red: {count, total, sample}.
async function nonRedPixels() {
  const png = (await page.screenshot()).toString('base64');
  return page.evaluate(async (data) => {
    const img = new Image();
    img.src = 'data:image/png;base64,' + data;
    await img.decode();
    const c = document.createElement('canvas');
    c.width = img.width; c.height = img.height;
    const g = c.getContext('2d');
    g.drawImage(img, 0, 0);
    const px = g.getImageData(0, 0, c.width, c.height).data;
    let count = 0; let sample = '';
    for (let i = 0; i < px.length; i += 4) {
      const [r, gr, b] = [px[i], px[i + 1], px[i + 2]];
      // Red, dimmed or mixed with black: green and blue stay well below red. Grey, white or
      // blue are not night colours.
      if (gr > r * 0.45 + 6 || b > r * 0.45 + 6) { count++; if (!sample) sample = `${r},${gr},${b} at ${(i / 4) % c.width},${Math.floor(i / 4 / c.width)}`; }
    }
    return { count, total: px.length / 4, sample };
  }, png);
}

async function checkScreen(name) {
  const styles = await nonRedStyles();
  assert.deepEqual(styles, [], `${name}: colours that are not red`);
  const pixels = await nonRedPixels();
  assert.equal(pixels.count, 0, `${name}: ${pixels.count} of ${pixels.total} pixels not red, first ${pixels.sample}`);
}

test('the night-mode button cycles "Off", "Bright", "Medium", "Dark" and saves it', async () => {
  assert.equal(await page.evaluate(() => document.documentElement.dataset.night), 'Off');
  await page.locator('#night').click();
  assert.equal(await page.evaluate(() => document.documentElement.dataset.night), 'Bright');
  const prefs = await (await fetch(server.url + '/api/prefs')).json();
  assert.equal(prefs.labels.nightMode, 'Bright');
});

test('every screen is red in night mode, the chart included', async () => {
  await checkScreen('main window');
  for (const id of ['chart', 'finder', 'align', 'report', 'scope', 'datetime', 'prefs', 'location']) {
    await page.evaluate((h) => { location.hash = '#/' + h; }, id);
    // Right after the switch, before the screen has its answers: no flash.
    await checkScreen(id + ' (switching)');
    if (id === 'chart') await page.waitForFunction(() => Number(document.querySelector('[data-testid=chart]')?.dataset.loaded || 0) > 0);
    else await page.waitForLoadState('networkidle');
    await checkScreen(id);
  }
});

test('a message box in night mode is red too', async () => {
  await page.evaluate(() => { location.hash = '#/finder/NGC 99999'; });
  await page.locator('.modal.message').waitFor();
  await checkScreen('message box');
  const boxes = await drainMessages(page);
  assert.ok(boxes.length >= 1);
});

test('a reload in night mode is dark from its first paint', async () => {
  await page.locator('#night').click();   // Medium
  await page.goto(server.url + '/#/chart', { waitUntil: 'commit' });
  await checkScreen('first paint');
  await page.waitForFunction(() => Number(document.querySelector('[data-testid=chart]')?.dataset.loaded || 0) > 0);
  assert.equal(await page.evaluate(() => document.documentElement.dataset.night), 'Medium');
  await checkScreen('chart after reload');
});

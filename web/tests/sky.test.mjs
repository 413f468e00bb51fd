// The sky screens: the planets table, the Moon, the events, the finder's suggestions and the
// object card of a tap on the chart, by day and in night mode.
import { test, before, after } from 'node:test';
import assert from 'node:assert/strict';
import { ready, startServer, launchBrowser, openScreen } from './harness.mjs';

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

// Shown elements smaller than a gloved finger: ["tag text WxH"].
function smallTargets() {
  return page.evaluate(() => [...document.querySelectorAll('#screen button, #screen input, #screen select, #screen tbody tr')]
    .filter((n) => n.getClientRects().length)
    .map((n) => ({ n, r: n.getBoundingClientRect() }))
    .filter(({ r }) => r.height < 48 || r.width < 48)
    .map(({ n, r }) => `${n.tagName.toLowerCase()} ${n.textContent.trim().slice(0, 20)} ${Math.round(r.width)}x${Math.round(r.height)}`));
}

test('the Planets screen lists Jupiter with its rise, transit and set; a tap shows its card', async () => {
  await openScreen(page, 'Planets');
  const row = page.locator('[data-testid=planets] tr[data-name=Jupiter]');
  await row.waitFor();
  const cells = await row.locator('td').allTextContents();
  assert.equal(cells.length, 7);
  assert.match(cells[4], /^\d\d:\d\d$|^--:--$/);
  assert.deepEqual(await smallTargets(), []);
  await row.click();
  const card = page.locator('[data-testid=planet-card] [data-testid=object]');
  await card.waitFor();
  assert.match(await card.locator('.name').textContent(), /Jupiter/);
  for (const label of ['GoTo', 'Sync', 'Centre']) assert.equal(await card.locator('button', { hasText: label }).count(), 1);
});

test('the Moon screen shows a phase name and the next four phases', async () => {
  await openScreen(page, 'Moon');
  const phase = page.locator('[data-testid=phase]');
  await phase.waitFor();
  assert.match(await phase.textContent(), /Moon|Quarter|Crescent|Gibbous/);
  assert.equal(await page.locator('[data-testid=next-phase]').count(), 4);
  assert.match(await page.locator('[data-testid=rise]').textContent(), /Rise/);
});

test('the Twilight screen shows the day\'s dawns, sunrise, sunset and dusks, and another date\'s', async () => {
  await openScreen(page, 'Twilight');
  const table = page.locator('[data-testid=twilight]');
  await page.locator('[data-testid=twilight] [data-testid=astronomicalDusk]').waitFor();
  const engine = await (await fetch(server.url + '/api/twilight')).json();
  assert.equal(await table.getAttribute('data-date'), engine.date, 'the engine\'s date first');
  const shown = async (key) => page.locator(`[data-testid=twilight] [data-testid=${key}] .value`).textContent();
  for (const key of ['sunrise', 'sunset', 'civilDawn', 'civilDusk', 'nauticalDawn', 'nauticalDusk', 'astronomicalDawn', 'astronomicalDusk'])
    assert.equal(await shown(key), engine[key] ? engine[key].slice(11, 16) : '--:--', key);
  // The rows read in the order of the day.
  const times = await page.locator('[data-testid=twilight] .row').evaluateAll((rows) => rows.map((r) => r.dataset.time).filter(Boolean));
  assert.deepEqual(times, [...times].sort());
  assert.deepEqual(await smallTargets(), []);
  // Another date: midsummer's evening comes later than midwinter's.
  await page.locator('input[name=date]').fill('2026-06-21');
  await page.locator('button', { hasText: 'Show' }).click();
  await page.locator('[data-testid=twilight][data-date="2026-06-21"]').waitFor();
  const june = await (await fetch(server.url + '/api/twilight?date=2026-06-21')).json();
  assert.equal(await shown('sunset'), june.sunset.slice(11, 16));
  const december = await (await fetch(server.url + '/api/twilight?date=2026-12-21')).json();
  assert.ok(june.sunset.slice(11) > december.sunset.slice(11), `${june.sunset} after ${december.sunset}`);
});

test('the Events screen lists the events of a kind between two dates', async () => {
  await openScreen(page, 'Events');
  await page.locator('input[name=from]').fill('2024-01-01');
  await page.locator('input[name=to]').fill('2024-12-31');
  await page.locator('select[name=kind]').selectOption('equinox');
  await page.locator('button', { hasText: 'Show' }).click();
  await page.waitForFunction(() => document.querySelectorAll('[data-testid=events] .event[data-kind=equinox]').length === 2);
  assert.deepEqual(await smallTargets(), []);
});

test('the finder suggests "Orion Nebula" for "orio" and shows its card', async () => {
  await openScreen(page, 'Find Object');
  await page.locator('input[name=name]').pressSequentially('orio', { delay: 30 });
  const suggestion = page.locator('[data-testid=suggestions] button', { hasText: 'Orion Nebula' });
  await suggestion.waitFor();
  assert.deepEqual(await smallTargets(), []);
  await suggestion.click();
  const card = page.locator('[data-testid=found] [data-testid=object]');
  await card.waitFor();
  assert.match(await card.textContent(), /Visibility/);
});

test('a tap on Vega shows its visibility word and its rise and set', async () => {
  await page.evaluate(() => { location.hash = '#/finder/HIP 91262'; });
  await page.locator('[data-testid=found] [data-testid=visibility]').waitFor();
  await page.locator('[data-testid=found] button', { hasText: 'Centre' }).click();
  await page.waitForFunction(() => Number(document.querySelector('[data-testid=chart]')?.dataset.loaded || 0) > 0);
  const box = await page.locator('[data-testid=chart]').boundingBox();
  await page.touchscreen.tap(box.x + box.width / 2 + 4, box.y + box.height / 2 - 4);
  const sheet = page.locator('.chart [data-testid=object]');
  await sheet.waitFor();
  assert.match(await sheet.locator('.name').textContent(), /Vega/);
  const visibility = await sheet.locator('[data-testid=visibility]').textContent();
  assert.match(visibility, /Visibility [A-Za-z]/);
  assert.doesNotMatch(visibility, /unknown/);
  assert.match(await sheet.locator('[data-testid=riseset]').textContent(), /Rise \d\d:\d\d .*Set \d\d:\d\d/);
});

// Colours of the shown elements that are not red.
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
        if (g > r * 0.45 + 6 || b > r * 0.45 + 6) bad.push(`${node.tagName.toLowerCase()}.${node.className} ${prop} ${s[prop]}`);
      }
    }
    return bad;
  });
}

test('the new screens are red in night mode', async () => {
  await page.evaluate(() => { location.hash = ''; });
  await page.locator('#night').click();   // Bright
  for (const id of ['planets', 'moon', 'events', 'finder']) {
    await page.evaluate((h) => { location.hash = '#/' + h; }, id);
    await page.waitForLoadState('networkidle');
    if (id === 'planets') await page.locator('[data-testid=planets] tr[data-name=Jupiter]').click();
    if (id === 'finder') {
      await page.locator('input[name=name]').pressSequentially('orio');
      await page.locator('[data-testid=suggestions] button').first().waitFor();
    }
    await page.waitForLoadState('networkidle');
    assert.deepEqual(await nonRedStyles(), [], id);
  }
});

// Twilight: sunrise and sunset, and the civil, nautical and astronomical dawn and dusk of a
// local date at the site (the engine's date first). A time the Sun never reaches that day
// shows "--:--".
import { el } from '../dom.js';
import { get, query } from '../api.js';
import { clockText } from '../card.js';

// In the order of the day: morning first, the evening after.
const ROWS = [
  ['astronomicalDawn', 'Astronomical dawn'],
  ['nauticalDawn', 'Nautical dawn'],
  ['civilDawn', 'Civil dawn'],
  ['sunrise', 'Sunrise'],
  ['sunset', 'Sunset'],
  ['civilDusk', 'Civil dusk'],
  ['nauticalDusk', 'Nautical dusk'],
  ['astronomicalDusk', 'Astronomical dusk'],
];

// The engine's observing date as YYYY-MM-DD, else today's.
async function engineDate() {
  const m = await get('/api/now', { quiet: true, silent: true });
  const two = (n) => String(n).padStart(2, '0');
  if (m.ok && m.year && m.month && m.day) return `${String(m.year).padStart(4, '0')}-${two(m.month)}-${two(m.day)}`;
  return new Date().toISOString().slice(0, 10);
}

export async function mount(container) {
  const date = el('input', { type: 'date', name: 'date', value: await engineDate() });
  const table = el('div', { class: 'group', 'data-testid': 'twilight' });

  async function show() {
    const r = await get('/api/twilight?' + query({ date: date.value }));
    table.replaceChildren();
    if (!r.ok) return;
    table.dataset.date = r.date || '';
    for (const [key, label] of ROWS) {
      table.append(el('div', { class: 'row kv', 'data-testid': key, 'data-time': r[key] || '' },
        el('span', { class: 'label' }, label), el('span', { class: 'value' }, clockText(r[key]))));
    }
  }

  container.append(el('div', { class: 'form' },
    el('form', { onsubmit: (e) => { e.preventDefault(); show(); } },
      el('div', { class: 'row' }, el('label', {}, 'Date:'), date),
      el('div', { class: 'buttons' }, el('button', { class: 'primary', type: 'submit' }, 'Show'))),
    table));
  await show();
}

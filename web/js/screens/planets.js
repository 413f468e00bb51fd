// The planets: the Sun, the Moon and the planets for the moment at the site, one row each
// (name, altitude, azimuth, magnitude, rise, transit, set); a tap on a row shows its card.
import { el } from '../dom.js';
import { get } from '../api.js';
import { objectCard, clockText } from '../card.js';

const degrees = (d) => (typeof d === 'number' ? d.toFixed(1) + '°' : '');
const magnitude = (m) => (typeof m === 'number' ? m.toFixed(1) : '');

export async function mount(container) {
  const card = el('div', { class: 'results', 'data-testid': 'planet-card' });
  const body = el('tbody');
  const table = el('table', { class: 'sky-table', 'data-testid': 'planets' },
    el('thead', {}, el('tr', {}, ['Name', 'Alt', 'Az', 'Mag', 'Rise', 'Transit', 'Set'].map((h) => el('th', {}, h)))),
    body);
  container.append(el('div', { class: 'form' }, el('div', { class: 'table-wrap' }, table), card));

  const r = await get('/api/planets');
  if (!r.ok) return;
  for (const b of r.bodies || []) {
    const row = el('tr', {
      tabindex: 0, 'data-name': b.name, class: b.alt > 0 ? 'up' : 'down',
      onclick: async () => {
        for (const other of body.children) other.classList.toggle('chosen', other === row);
        card.replaceChildren(await objectCard(b.name, { ...b, names: [b.name] }));
        card.scrollIntoView({ block: 'nearest' });
      },
    },
    el('td', { class: 'name' }, b.name), el('td', {}, degrees(b.alt)), el('td', {}, degrees(b.az)),
    el('td', {}, magnitude(b.mag)), el('td', {}, clockText(b.rise)), el('td', {}, clockText(b.transit)),
    el('td', {}, clockText(b.set)));
    body.append(row);
  }
}

// The Moon: its phase, age, illumination, rise, transit and set for the local day, and the
// next four phases.
import { el } from '../dom.js';
import { get } from '../api.js';
import { clockText } from '../card.js';

// "2024-07-21T12:17:05" -> "2024-07-21 12:17".
const whenText = (iso) => (typeof iso === 'string' ? iso.slice(0, 10) + ' ' + iso.slice(11, 16) : '');

export async function mount(container) {
  const r = await get('/api/moon');
  if (!r.ok) return;
  const line = (label, value, testid) => el('div', { class: 'row kv', 'data-testid': testid },
    el('span', { class: 'label' }, label), el('span', { class: 'value' }, value));
  container.append(el('div', { class: 'form' },
    el('div', { class: 'group' },
      el('h3', { class: 'phase', 'data-testid': 'phase' }, r.phase || ''),
      line('Age', `${Number(r.age).toFixed(1)} days`, 'age'),
      line('Illuminated', `${Math.round(100 * r.illuminated)}%`, 'illuminated'),
      line('Rise', clockText(r.rise), 'rise'),
      line('Transit', clockText(r.transit), 'transit'),
      line('Set', clockText(r.set), 'set'),
      line('Distance', `${Math.round(r.distanceKm).toLocaleString('en')} km`, 'distance')),
    el('div', { class: 'group', 'data-testid': 'next-phases' },
      el('header', {}, el('h3', {}, 'Next phases')),
      (r.nextPhases || []).map((p) => line(p.phase, whenText(p.time), 'next-phase')))));
}

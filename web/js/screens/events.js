// The events of the Sun, the Moon and the planets between two local dates (conjunctions,
// oppositions, elongations, stations, apsides, equinoxes, solstices), of one kind or all.
import { el } from '../dom.js';
import { get, query } from '../api.js';

const KINDS = [
  ['', 'All'], ['conjunction', 'Conjunction'], ['opposition', 'Opposition'],
  ['greatestElongation', 'Greatest elongation'], ['station', 'Station'], ['perihelion', 'Perihelion'],
  ['aphelion', 'Aphelion'], ['perigee', 'Perigee'], ['apogee', 'Apogee'], ['equinox', 'Equinox'],
  ['solstice', 'Solstice'],
];
const RANGE_DAYS = 90;

const isoDate = (d) => d.toISOString().slice(0, 10);

// The first date shown: the engine's observing date, else today.
async function startDate() {
  const m = await get('/api/now', { quiet: true, silent: true });
  if (m.ok && m.year && m.month && m.day) return new Date(Date.UTC(m.year, m.month - 1, m.day));
  return new Date();
}

export async function mount(container) {
  const start = await startDate();
  const from = el('input', { type: 'date', name: 'from', value: isoDate(start) });
  const to = el('input', { type: 'date', name: 'to', value: isoDate(new Date(start.getTime() + RANGE_DAYS * 86400000)) });
  const kind = el('select', { name: 'kind' }, KINDS.map(([v, label]) => el('option', { value: v }, label)));
  const list = el('div', { class: 'results', 'data-testid': 'events' });

  async function show() {
    const r = await get('/api/events?' + query({ from: from.value, to: to.value, kind: kind.value }));
    list.replaceChildren();
    if (!r.ok) return;
    const events = r.events || [];
    if (!events.length) list.append(el('div', { class: 'note' }, 'No events in these dates.'));
    for (const e of events) {
      const label = (KINDS.find(([v]) => v === e.kind) || [e.kind, e.kind])[1];
      const bodies = (e.bodies || []).join(' – ');
      const separation = typeof e.separationDeg === 'number' ? `  ${e.separationDeg.toFixed(2)}°` : '';
      list.append(el('div', { class: 'group event', 'data-kind': e.kind },
        el('div', {}, `${e.time.slice(0, 10)} ${e.time.slice(11, 16)}`),
        el('div', { class: 'note' }, `${label}: ${bodies}${separation}`)));
    }
  }

  container.append(el('div', { class: 'form' },
    el('form', { onsubmit: (e) => { e.preventDefault(); show(); } },
      el('div', { class: 'row' }, el('label', {}, 'From:'), from),
      el('div', { class: 'row' }, el('label', {}, 'To:'), to),
      el('div', { class: 'row' }, el('label', {}, 'Kind:'), kind),
      el('div', { class: 'buttons' }, el('button', { class: 'primary', type: 'submit' }, 'Show'))),
    list));
  await show();
}

// The finder: a catalogue name ("M 31", "NGC 7000", "HIP 91262", a star's name) gives the
// object, which can be centred on the chart or chosen for the telescope's GoTo and Sync.
import { el } from '../dom.js';
import { get, post, query } from '../api.js';
import { state } from '../state.js';
import { objectName, objectLines } from '../describe.js';

export async function mount(container, ctx) {
  const input = el('input', { type: 'search', name: 'name', placeholder: 'M 31, NGC 7000, HIP 91262', enterkeyhint: 'search', autocomplete: 'off', value: ctx.arg || '' });
  const result = el('div', { class: 'results', 'data-testid': 'found' });

  async function find() {
    const name = input.value.trim();
    if (!name) return;
    const r = await get('/api/find?' + query({ name }));
    result.replaceChildren();
    if (!r.ok) return;
    const o = r.object || r;
    const chosen = { name: (o.names && o.names[0]) || o.name || name, ra: o.ra, dec: o.dec };
    state.chosen = chosen;
    result.append(el('div', { class: 'group' },
      el('h3', { class: 'name' }, objectName(o) || name),
      objectLines(o),
      el('div', { class: 'buttons' },
        el('button', { class: 'primary', onclick: () => post('/api/scope/goto', { ra: chosen.ra, dec: chosen.dec }) }, 'GoTo'),
        el('button', { onclick: () => post('/api/scope/sync', { ra: chosen.ra, dec: chosen.dec }) }, 'Sync'),
        el('button', { onclick: () => { state.centre = chosen; location.hash = '#/chart'; } }, 'Centre'))));
  }

  container.append(el('div', { class: 'form' },
    el('form', { onsubmit: (e) => { e.preventDefault(); input.blur(); find(); } },
      el('div', { class: 'row' }, el('label', {}, 'Name:'), input),
      el('div', { class: 'buttons' }, el('button', { class: 'primary', type: 'submit' }, 'Find'))),
    result));
  if (input.value) find();
}

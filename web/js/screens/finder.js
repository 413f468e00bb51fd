// The finder: a catalogue name ("M 31", "NGC 7000", "HIP 91262", a star's name) gives the
// object's card, which can be centred on the chart or chosen for the telescope's GoTo and Sync.
// Names starting with what is typed are suggested as buttons under the box.
import { el } from '../dom.js';
import { get, query } from '../api.js';
import { objectCard } from '../card.js';

const SUGGEST_AFTER_MS = 180;

export async function mount(container, ctx) {
  const input = el('input', { type: 'search', name: 'name', placeholder: 'M 31, NGC 7000, HIP 91262', enterkeyhint: 'search', autocomplete: 'off', value: ctx.arg || '' });
  const suggestions = el('div', { class: 'results suggestions', 'data-testid': 'suggestions' });
  const result = el('div', { class: 'results', 'data-testid': 'found' });
  let timer = null;
  let asked = 0;

  async function find(text) {
    const name = (text ?? input.value).trim();
    if (!name) return;
    clearTimeout(timer);
    ++asked;
    suggestions.replaceChildren();
    const r = await get('/api/find?' + query({ name }));
    result.replaceChildren();
    if (!r.ok) return;
    // The typed name: the found object's name text ("M42, NGC1976") lists several.
    result.append(await objectCard(name, r));
  }

  async function suggest() {
    const prefix = input.value.trim();
    const turn = ++asked;
    if (prefix.length < 2) { suggestions.replaceChildren(); return; }
    const r = await get('/api/find/suggest?' + query({ prefix }), { quiet: true, silent: true });
    if (turn !== asked) return;
    const names = r.ok && Array.isArray(r.result) ? r.result : [];
    suggestions.replaceChildren(...names.map((n) => el('button', {
      type: 'button', 'data-name': n, onclick: () => { input.value = n; find(n); },
    }, n)));
  }

  input.addEventListener('input', () => { clearTimeout(timer); timer = setTimeout(suggest, SUGGEST_AFTER_MS); });

  container.append(el('div', { class: 'form' },
    el('form', { onsubmit: (e) => { e.preventDefault(); input.blur(); find(); } },
      el('div', { class: 'row' }, el('label', {}, 'Name:'), input),
      suggestions,
      el('div', { class: 'buttons' }, el('button', { class: 'primary', type: 'submit' }, 'Find'))),
    result));
  if (input.value) find();
  return () => clearTimeout(timer);
}

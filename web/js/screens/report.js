// The alignment report, as the engine writes it.
import { el } from '../dom.js';
import { get } from '../api.js';

export async function mount(container) {
  const r = await get('/api/align/report');
  const text = r.ok ? (r.report ?? r.text ?? '') : '';
  container.replaceChildren(el('div', { class: 'form' },
    el('pre', { class: 'report', 'data-testid': 'report' }, text || 'No alignment report yet.')));
}

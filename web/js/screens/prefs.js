// Preference 1/6 .. 6/6: each page drawn from its description, walked with "Prev" and "Next",
// closed with "Ok". Leaving a page sends its values; a refused value keeps the page open.
import { el } from '../dom.js';
import { get, post } from '../api.js';
import { renderForm } from '../form.js';
import { loadPrefs } from '../state.js';

export async function prefPageIds() {
  const list = await get('/api/forms', { quiet: true });
  const forms = list.ok ? (list.forms || list.value || []) : [];
  const pages = forms.filter((f) => /^Preference \d\/\d$/.test(f.title || ''))
    .sort((a, b) => a.title.localeCompare(b.title));
  return pages.length ? pages.map((f) => f.id) : ['pref1', 'pref2', 'pref3', 'pref4', 'pref5', 'pref6'];
}

export async function mount(container, ctx) {
  const ids = await prefPageIds();
  let page = Math.max(0, Math.min(ids.length - 1, (Number(ctx.arg) || 1) - 1));
  let current = null;

  async function show(index) {
    const form = await get('/api/forms/' + encodeURIComponent(ids[index]));
    if (!form.ok) return;
    page = index;
    current = renderForm(form);
    const title = form.title || `Preference ${index + 1}/${ids.length}`;
    ctx.setTitle(title);
    container.replaceChildren(el('div', { class: 'form', 'data-page': String(index + 1) },
      el('h2', {}, title),
      current.node,
      el('div', { class: 'footer' },
        el('button', { 'data-testid': 'prev', disabled: index === 0, onclick: () => leave(index - 1) }, 'Prev'),
        el('button', { 'data-testid': 'next', disabled: index === ids.length - 1, onclick: () => leave(index + 1) }, 'Next'),
        el('button', { class: 'primary', 'data-testid': 'ok', onclick: () => leave(-1) }, 'Ok'))));
  }

  async function leave(next) {
    const r = await post('/api/forms/' + encodeURIComponent(ids[page]), { values: current.values(), button: next < 0 ? 'Ok' : next < page ? 'Prev' : 'Next' });
    if (!r.ok || r.accepted === false) return;
    await loadPrefs();
    if (next < 0) location.hash = '';
    else show(next);
  }

  await show(page);
}

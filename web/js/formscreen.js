// A screen that is one engine form: drawn from its description, its buttons post the values
// with the button's label, controls marked "immediate" post at once when changed (the Location
// page's site selector, the date/time dialog's Local/UT switch). The answer's form, when given,
// is drawn again; "Ok" and "Cancel" go back to the main window when accepted.
import { el } from './dom.js';
import { get, post } from './api.js';
import { renderForm } from './form.js';
import { loadPrefs } from './state.js';

const CLOSING = new Set(['Ok', 'OK', 'Cancel', 'Done']);
const labelOf = (b) => (typeof b === 'string' ? b : b.label ?? b.text ?? String(b.id));

export async function mountForm(container, ctx, formId, { footer = ['Ok'], extra = null } = {}) {
  const path = '/api/forms/' + encodeURIComponent(formId);
  let current = null;

  function draw(form) {
    current = renderForm(form);
    if (form.title) ctx.setTitle(form.title);
    const buttons = (form.buttons && form.buttons.length ? form.buttons : footer).map(labelOf);
    const nodes = [el('h2', {}, form.title || ''), current.node];
    if (extra) nodes.push(extra(form));
    nodes.push(el('div', { class: 'footer' }, buttons.map((label, i) =>
      el('button', { class: i === 0 ? 'primary' : '', 'data-button': label, onclick: () => send(label) }, label))));
    container.replaceChildren(el('div', { class: 'form', 'data-form': formId }, nodes));
    for (const [key, input] of current.inputs) {
      const c = input.control;
      if (c.immediate || c.action || c.onChange) input.node.addEventListener('change', () => send(null, key));
    }
  }

  async function send(button, changed) {
    const body = { values: current.values() };
    if (button) body.button = button;
    if (changed) body.changed = changed;
    const r = await post(path, body);
    if (!r.ok || r.accepted === false) {
      if (r.form) draw(r.form);
      return r;
    }
    await loadPrefs();
    if (button && CLOSING.has(button)) { location.hash = ''; return r; }
    if (r.form) draw(r.form);
    else { const again = await get(path); if (again.ok) draw(again); }
    return r;
  }

  const form = await get(path);
  if (form.ok) draw(form);
  return { send, redraw: draw };
}

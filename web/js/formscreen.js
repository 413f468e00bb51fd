// A screen made of engine forms. The description's buttons post the values with the button's
// action: a button naming another form ("Prev", "Next" of the preference pages) shows that
// form once its values are accepted; "ok" and "accept" go back to the main window; any other
// action ("jd", "now", "read1", "compute"...) draws the form again from the answer. Selectors
// and boxes whose description names an action (the Location page's Site1..Site3 and DST, the
// date/time dialog's Local/UT) post it at once when changed.
import { el } from './dom.js';
import { get, post } from './api.js';
import { renderForm } from './form.js';
import { loadPrefs, state } from './state.js';

const CLOSING = new Set(['ok', 'accept', 'cancel']);
// Two-way selectors the engine reads as true/false: the values carry the scale the fields were
// shown in, the body the one chosen now (the date/time dialog's Local/UT).
const BOOLEAN_SELECTORS = new Set(['showsUt']);
const isOn = (v) => v === true || v === 1;

export async function mountForm(container, ctx, firstId, { onShow = null } = {}) {
  let formId = firstId;
  let current = null;
  const path = (id) => '/api/forms/' + encodeURIComponent(id);

  function draw(form) {
    formId = form.id || formId;
    current = renderForm(form);
    if (form.title) ctx.setTitle(form.title);
    const buttons = (form.buttons || []).map((b) => (typeof b === 'string' ? { label: b, action: b.toLowerCase() } : b));
    container.replaceChildren(el('div', { class: 'form', 'data-form': formId },
      el('h2', {}, form.title || ''),
      current.node,
      el('div', { class: 'footer' }, buttons.map((b) =>
        el('button', { class: CLOSING.has(b.action) ? 'primary' : '', 'data-action': b.action || '', 'data-testid': b.action || '', onclick: () => press(b) }, b.label)))));
    for (const input of current.inputs.values()) {
      const action = input.control.action;
      if (action) input.node.addEventListener('change', () => send({ action }));
    }
    if (onShow) onShow(form);
  }

  async function send(body) {
    const values = current.values();
    const chosen = {};
    for (const key of BOOLEAN_SELECTORS) {
      const input = current.inputs.get(key);
      if (!input) continue;
      values[key] = isOn(input.control.value);
      chosen[key] = isOn(input.read());
    }
    const r = await post(path(formId), { ...chosen, ...body, values });
    // A connected drive followed a change of its link: reopened, or left disconnected.
    if (typeof r.scopeConnected === 'boolean') state.scopeConnected = r.scopeConnected;
    if (r.form) draw(r.form);
    return r;
  }

  async function show(id) {
    const form = await get(path(id));
    if (form.ok) draw(form);
    return form;
  }

  async function press(button) {
    const r = await send({ action: button.action, button: button.label });
    if (!r.ok || r.accepted === false) return;
    await loadPrefs();
    if (button.form) { await show(button.form); return; }
    if (CLOSING.has(button.action)) { location.hash = ''; return; }
    if (!r.form) await show(formId);
  }

  await show(firstId);
  return { show, press };
}

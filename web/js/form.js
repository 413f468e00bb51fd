// Draws any form from the engine's description (GET /api/forms/{id}) and reads its values back.
// A description holds numbered controls with their labels, list entries top to bottom (the
// stored index is the position in that list), help texts ("Inf") and current values, grouped
// under captions. The page knows no form: a new form is a new description.
//   control types: list, selector (a row of choices), number, text, check, static.
import { el } from './dom.js';
import { showMessage } from './modal.js';

const CHECK = new Set(['check', 'checkbox', 'bool', 'boolean']);
const LIST = new Set(['list', 'choice', 'popup', 'select']);
const SELECTOR = new Set(['selector', 'radio']);
const NUMBER = new Set(['number', 'integer', 'real']);

export const controlKey = (c) => String(c.name ?? c.id ?? c.label);
const entryText = (e) => (typeof e === 'string' ? e : e.label ?? e.text ?? String(e.value));

function infButton(text, caption) {
  return el('button', { class: 'inf', type: 'button', 'data-inf': caption || '', onclick: () => showMessage(caption || '', text, 'Information') }, 'Inf');
}

// A control's own help text: an "Inf" button at the end of its row.
const withInf = (row, c) => { if (c.help) { row.classList.add('has-inf'); row.append(infButton(c.help, c.label)); } return row; };

function typeOf(c) {
  if (c.type) return String(c.type).toLowerCase();
  if (c.entries) return 'list';
  if (typeof c.value === 'boolean') return 'check';
  return typeof c.value === 'number' ? 'number' : 'text';
}

function checkControl(c, key, inputs) {
  const id = 'ctl-' + key.replace(/\W/g, '_');
  const box = el('input', { id, name: key, 'data-control': key, type: 'checkbox', checked: c.value === true || !!Number(c.value ?? 0), disabled: !!c.readOnly });
  inputs.set(key, { control: c, node: box, read: () => (typeof c.value === 'boolean' ? box.checked : box.checked ? 1 : 0) });
  return withInf(el('label', { class: 'row check', for: id }, box, c.label ?? ''), c);
}

function selectorControl(c, key, inputs) {
  const entries = (c.entries || []).map(entryText);
  let value = typeof c.value === 'number' ? c.value : Math.max(0, entries.indexOf(String(c.value)));
  const group = el('div', { class: 'selector', role: 'radiogroup', 'data-control': key, 'aria-label': c.label || key });
  const buttons = entries.map((t, i) => el('button', {
    type: 'button', role: 'radio', 'data-index': String(i), class: i === value ? 'on' : '', 'aria-checked': String(i === value),
    disabled: !!c.readOnly,
    onclick: () => {
      value = i;
      buttons.forEach((b, j) => { b.classList.toggle('on', j === i); b.setAttribute('aria-checked', String(j === i)); });
      group.dispatchEvent(new Event('change'));
    },
  }, t));
  group.append(...buttons);
  inputs.set(key, { control: c, node: group, read: () => value });
  return withInf(c.label ? el('div', { class: 'row' }, el('label', {}, c.label), group) : group, c);
}

function fieldControl(c, key, inputs, type) {
  const id = 'ctl-' + key.replace(/\W/g, '_');
  let input;
  let read;
  const cell = [];
  if (LIST.has(type)) {
    const entries = (c.entries || []).map(entryText);
    input = el('select', { id, name: key, 'data-control': key, disabled: !!c.readOnly }, entries.map((t, i) => el('option', { value: String(i) }, t)));
    const index = typeof c.value === 'number' ? c.value : entries.indexOf(String(c.value ?? ''));
    input.value = String(index >= 0 ? index : 0);
    read = () => Number(input.value);
  } else {
    const numeric = NUMBER.has(type);
    const picks = Array.isArray(c.picks) ? id + '-picks' : undefined;
    input = el('input', {
      id, name: key, 'data-control': key, type: 'text', inputmode: numeric ? 'decimal' : 'text', autocomplete: 'off',
      maxlength: c.maxChars || undefined, value: c.value ?? '', list: picks, disabled: !!c.readOnly,
    });
    if (picks) cell.push(el('datalist', { id: picks }, c.picks.map((v) => el('option', { value: String(v) }))));
    read = () => {
      const text = input.value.trim();
      return numeric && text !== '' && isFinite(Number(text)) ? Number(text) : input.value;
    };
  }
  inputs.set(key, { control: c, node: input, read });
  return withInf(el('div', { class: 'row' }, el('label', { for: id }, c.label ?? ''), cell.length ? el('div', {}, input, cell) : input), c);
}

function controlNode(c, inputs) {
  const key = controlKey(c);
  const type = typeOf(c);
  if (type === 'static' || type === 'label') return el('div', { class: 'note', 'data-control': key }, c.label ? `${c.label} ${c.value ?? ''}` : c.value ?? '');
  if (CHECK.has(type)) return checkControl(c, key, inputs);
  if (SELECTOR.has(type)) return selectorControl(c, key, inputs);
  return fieldControl(c, key, inputs, type);
}

// Renders the description into a node; returns {node, values(), inputs}.
export function renderForm(form) {
  const inputs = new Map();
  const groups = Array.isArray(form.groups) ? form.groups : [{ label: '', controls: form.controls || [] }];
  const node = el('div', { class: 'form-body', 'data-form': form.id ?? '' });
  if (form.help) node.append(el('div', { class: 'buttons' }, infButton(form.help, form.title)));
  for (const g of groups) {
    const checks = [];
    const rows = [];
    for (const c of g.controls || []) (CHECK.has(typeOf(c)) ? checks : rows).push(controlNode(c, inputs));
    node.append(el('fieldset', { class: 'group', 'data-group': g.label || '' },
      (g.label || g.help) ? el('header', {}, el('h3', {}, g.label || ''), g.help ? infButton(g.help, g.label) : '') : '',
      rows, checks.length ? el('div', { class: 'checks' }, checks) : ''));
  }
  const values = () => {
    const out = {};
    for (const [key, input] of inputs) if (!input.control.readOnly) out[key] = input.read();
    return out;
  };
  return { node, values, inputs };
}

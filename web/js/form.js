// Draws any form from the engine's description (GET /api/forms/{id}) and reads its values back.
// A description holds numbered controls with their labels, list entries top to bottom (the
// stored index is the position in that list), help texts ("Inf") and current values, grouped
// under captions. The page knows no form: a new form is a new description.
import { el } from './dom.js';
import { showMessage } from './modal.js';

const CHECK = new Set(['check', 'checkbox', 'bool', 'boolean', 'box']);
const LIST = new Set(['list', 'choice', 'popup', 'select', 'enum', 'index', 'selector']);
const NUMBER = new Set(['number', 'integer', 'real', 'int', 'float']);

const controlKey = (c) => String(c.id ?? c.name ?? c.field ?? c.label);
const entryText = (e) => (typeof e === 'string' ? e : e.label ?? e.text ?? String(e.value));

function groupsOf(form) {
  if (Array.isArray(form.groups)) return form.groups;
  const controls = form.controls || form.fields || [];
  const groups = [];
  for (const c of controls) {
    const name = c.group ?? '';
    let g = groups.find((x) => x.label === name);
    if (!g) { g = { label: name, controls: [] }; groups.push(g); }
    g.controls.push(c);
  }
  return groups;
}

function infButton(text, caption) {
  return el('button', { class: 'inf', type: 'button', onclick: () => showMessage(caption || 'Inf', text, 'Inf') }, 'Inf');
}

function controlNode(c, inputs) {
  const key = controlKey(c);
  const type = String(c.type || (c.entries ? 'list' : typeof c.value === 'boolean' ? 'check' : typeof c.value === 'number' ? 'number' : 'text')).toLowerCase();
  const id = 'ctl-' + key.replace(/\W/g, '_');
  const common = { id, 'data-control': key, name: c.field || c.name || key };
  if (type === 'label' || type === 'static') return el('div', { class: 'note', 'data-control': key }, c.label ?? c.value ?? '');
  if (type === 'inf' || type === 'help') return el('div', { class: 'buttons' }, infButton(c.text ?? c.help ?? c.inf ?? '', c.label));
  if (CHECK.has(type)) {
    const box = el('input', { ...common, type: 'checkbox', checked: !!Number(c.value ?? 0) || c.value === true });
    inputs.set(key, { control: c, read: () => (typeof c.value === 'boolean' ? box.checked : box.checked ? 1 : 0), node: box });
    return el('label', { class: 'row check', for: id }, box, c.label ?? '');
  }
  let input;
  if (LIST.has(type)) {
    const entries = (c.entries || c.items || []).map(entryText);
    input = el('select', common, entries.map((t, i) => el('option', { value: String(i) }, t)));
    const index = typeof c.value === 'number' ? c.value : entries.indexOf(String(c.value ?? c.text ?? ''));
    input.value = String(index >= 0 ? index : c.index ?? 0);
    inputs.set(key, { control: c, read: () => Number(input.value), node: input });
  } else {
    const numeric = NUMBER.has(type);
    input = el('input', { ...common, type: 'text', inputmode: numeric ? 'decimal' : 'text', autocomplete: 'off',
      maxlength: c.maxChars || c.maxLength || undefined, value: c.value ?? c.text ?? '' });
    inputs.set(key, { control: c, read: () => input.value, node: input });
  }
  const row = el('div', { class: 'row' }, el('label', { for: id }, c.label ?? ''), input);
  return (c.help || c.inf) ? [row, el('div', { class: 'buttons' }, infButton(c.help || c.inf, c.label))] : row;
}

// Renders the description into a node; returns {node, values(), inputs}.
export function renderForm(form) {
  const inputs = new Map();
  const node = el('div', { class: 'form-body', 'data-form': form.id ?? '' });
  for (const g of groupsOf(form)) {
    const checks = [];
    const rows = [];
    for (const c of g.controls || g.fields || []) {
      const n = controlNode(c, inputs);
      const type = String(c.type || '').toLowerCase();
      (CHECK.has(type) ? checks : rows).push(n);
    }
    const inf = g.inf ?? g.help;
    node.append(el('fieldset', { class: 'group', 'data-group': g.label || '' },
      (g.label || inf) ? el('header', {}, el('h3', {}, g.label || ''), inf ? infButton(inf, g.label) : '') : '',
      rows, checks.length ? el('div', { class: 'checks' }, checks) : ''));
  }
  const values = () => {
    const out = {};
    for (const [key, input] of inputs) out[key] = input.read();
    return out;
  };
  return { node, values, inputs };
}

// The observer logs: the listing (object, date and time), the log form with its fields and
// choice lists, Save, Delete and Export (the engine asks first). "#/logs/new/NAME" opens the
// form of a new log of NAME, as the "Log it" buttons of the chart and SkyRoamer do; the
// engine fills its defaults (the moment, the catalogue's place, the site, the telescope).
import { el } from '../dom.js';
import { get, post, request } from '../api.js';
import { ask } from '../modal.js';

// The form's text and number fields: [key of the request, key of the log's JSON, label, input type].
const FIELDS = [
  ['on', 'date', 'Date', 'text'],
  ['at', 'time', 'Time', 'text'],
  ['ra', 'ra', 'RA (h)', 'text'],
  ['dec', 'dec', 'Dec (°)', 'text'],
  ['type', 'type', 'Type', 'text'],
  ['mag', 'objectMag', 'Mag', 'number'],
  ['moon', 'moonPct', 'Moon (%)', 'number'],
  ['sun', 'sunAltDeg', 'Sun alt. (°)', 'number'],
  ['visMag', 'visualMag', 'Vis. mag', 'text'],
  ['scope', 'scope', 'Scope', 'text'],
  ['location', 'location', 'Location', 'text'],
  ['filter', 'filter', 'Filter', 'text'],
  ['eyepiece', 'eyepiece', 'Eyepiece', 'number'],
];
const CHOICES = [['transparency', 'Transparency'], ['seeing', 'Seeing'], ['rating', 'Rating'], ['result', 'Result']];

export async function mount(container, ctx) {
  let alive = true;
  const body = el('div', { class: 'form' });
  container.append(body);
  let form = {};

  async function listing() {
    const r = await get('/api/logs');
    if (!alive || !r.ok) return;
    form = r.form || {};
    const items = el('div', { class: 'results', 'data-testid': 'logs' });
    for (const entry of r.logs) {
      if (entry.damaged) { items.append(el('div', { class: 'note' }, `${entry.file} (damaged)`)); continue; }
      items.append(el('button', { 'data-log': entry.object, onclick: () => { location.hash = '#/logs/' + encodeURIComponent(entry.object); } },
        `${entry.object}  ${entry.date} ${entry.time}`));
    }
    if (!r.logs.length) items.append(el('div', { class: 'note' }, 'No observer log yet.'));
    const newName = el('input', { type: 'text', id: 'log-new-name', name: 'newName', placeholder: 'M 13', maxlength: 19, autocomplete: 'off' });
    body.replaceChildren(
      el('form', { onsubmit: (e) => { e.preventDefault(); if (newName.value.trim()) location.hash = '#/logs/new/' + encodeURIComponent(newName.value.trim()); } },
        el('div', { class: 'row' }, el('label', { for: 'log-new-name' }, 'Object:'), newName),
        el('div', { class: 'buttons' },
          el('button', { class: 'primary', type: 'submit', 'data-action': 'new-log' }, 'New log'),
          el('button', { type: 'button', 'data-action': 'export', onclick: exportLogs }, 'Export'))),
      items);
  }

  async function exportLogs() {
    await post('/api/logs/export');
  }

  async function logForm(name, creating) {
    if (!form.rating) {
      const r = await get('/api/logs', { quiet: true });
      if (r.ok) form = r.form || {};
    }
    let log = {};
    if (!creating) {
      const r = await get('/api/logs/' + encodeURIComponent(name));
      if (!alive) return;
      if (!r.ok) { location.hash = '#/logs'; return; }
      log = r;
    }
    const inputs = {};
    const object = el('input', { type: 'text', id: 'log-object', name: 'object', maxlength: 19, value: creating ? name : log.object });
    const rows = [el('div', { class: 'row' }, el('label', { for: 'log-object' }, 'Object:'), object)];
    for (const [key, from, label, type] of FIELDS) {
      const id = 'log-' + key;
      const value = creating ? '' : String(log[from] ?? '');
      inputs[key] = el('input', { type, id, name: key, value, placeholder: creating ? 'default' : '', step: type === 'number' ? 'any' : undefined });
      rows.push(el('div', { class: 'row' }, el('label', { for: id }, label + ':'), inputs[key]));
    }
    for (const [key, label] of CHOICES) {
      const id = 'log-' + key;
      const options = (form[key] || []).map((t, i) => el('option', { value: String(i), selected: !creating && log[key] === i }, t));
      if (creating) options.unshift(el('option', { value: '', selected: true }, '—'));
      inputs[key] = el('select', { id, name: key }, options);
      rows.push(el('div', { class: 'row' }, el('label', { for: id }, label + ':'), inputs[key]));
    }
    inputs.note = el('textarea', { id: 'log-note', name: 'note', rows: 4, maxlength: 287 }, creating ? '' : log.note || '');
    rows.push(el('div', { class: 'row' }, el('label', { for: 'log-note' }, 'Note:'), inputs.note));

    // Only the fields the user changed are sent: a new log keeps the engine's defaults.
    const initial = {};
    for (const [key, input] of Object.entries(inputs)) initial[key] = input.value;

    async function save() {
      const fields = {};
      for (const [key, input] of Object.entries(inputs)) if (input.value !== initial[key]) fields[key] = input.value;
      const newName = object.value.trim();
      if (!creating && newName !== log.object) fields.object = newName;
      const r = await post('/api/logs', { mode: creating ? 'new' : 'edit', name: creating ? newName : log.object, fields });
      if (alive && r.ok) location.hash = '#/logs';
    }
    async function remove() {
      if (!(await ask(`Delete the log of ${log.object}?`))) return;
      const r = await request('DELETE', '/api/logs/' + encodeURIComponent(log.object));
      if (alive && r.ok) location.hash = '#/logs';
    }
    body.replaceChildren(el('form', { 'data-testid': 'log-form', onsubmit: (e) => { e.preventDefault(); save(); } },
      el('div', { class: 'group' }, rows),
      el('div', { class: 'footer' },
        el('button', { class: 'primary', type: 'submit', 'data-action': 'save' }, 'Save'),
        creating ? '' : el('button', { type: 'button', 'data-action': 'delete', onclick: remove }, 'Delete'),
        el('button', { type: 'button', onclick: () => { location.hash = '#/logs'; } }, 'Cancel'))));
  }

  const arg = ctx.arg || '';
  if (arg.startsWith('new/')) await logForm(arg.slice(4), true);
  else if (arg) await logForm(arg, false);
  else await listing();
  return () => { alive = false; };
}

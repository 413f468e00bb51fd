// SkyRoamer: the "Choose Selection Criteria" form drawn from the engine's description, the
// icons "N" (new list), "+" (add), "-" (remove) and the trash (criteria back to "No Criteria"),
// the current list (tap an object for its card), a "next object" GoTo that walks the list with
// the mount, the saved lists ("name, count") and the memos with their preview.
import { el } from '../dom.js';
import { get, post, query } from '../api.js';
import { state } from '../state.js';
import { objectLines } from '../describe.js';

const SHORT = ['messier', 'caldwell', 'herschel', 'sac', 'stars', 'user', 'comets', 'planets', 'galaxies',
  'nebulae', 'globulars', 'multiples', 'all'];

// The trash icon, drawn in the text colour so that night mode keeps it red.
function trashIcon() {
  const svg = document.createElementNS('http://www.w3.org/2000/svg', 'svg');
  svg.setAttribute('viewBox', '0 0 24 24');
  svg.setAttribute('width', '26');
  svg.setAttribute('height', '26');
  svg.setAttribute('aria-hidden', 'true');
  svg.innerHTML = '<path d="M4 7h16M9 7V4h6v3M6 7l1 13h10l1-13M10 11v6M14 11v6" fill="none" stroke="currentColor" stroke-width="2" stroke-linecap="round" stroke-linejoin="round"/>';
  return svg;
}

export async function mount(container) {
  let alive = true;
  const fields = el('div', { 'data-testid': 'criteria' });
  const stages = el('pre', { class: 'report', hidden: true, 'data-testid': 'stages' });
  const list = el('div', { class: 'results', 'data-testid': 'list' });
  const card = el('div', { 'data-testid': 'card' });
  const nextNote = el('div', { class: 'note', 'data-testid': 'next' });
  const pickers = el('div', {});
  let objects = [];
  let next = 0;

  const inputs = {};
  async function loadCriteria() {
    const r = await get('/api/roam/criteria');
    if (!alive || !r.ok) return;
    fields.replaceChildren();
    for (const c of r.criteria) {
      const id = 'roam-' + c.key;
      const input = c.choices.length
        ? el('select', { id, name: c.key }, c.choices.map((t, i) => el('option', { value: String(i), selected: i === c.value }, t)))
        : el('input', { id, name: c.key, type: 'number', inputmode: 'numeric', min: 0, value: String(c.value) });
      inputs[c.key] = input;
      fields.append(el('div', { class: 'row' }, el('label', { for: id }, c.label + ':'), input));
    }
  }

  function criteria() {
    const out = {};
    for (const [key, input] of Object.entries(inputs)) out[key] = input.value === '' ? '0' : input.value;
    return out;
  }

  function showList(r) {
    objects = r.objects || [];
    if (next >= objects.length) next = 0;
    list.replaceChildren();
    card.replaceChildren();
    objects.forEach((o, i) => list.append(el('button', { 'data-index': i, onclick: () => showCard(o) },
      `${o.name}  ${o.type || ''}${o.mag === null || o.mag === undefined ? '' : '  ' + o.mag}`)));
    if (!objects.length) list.append(el('div', { class: 'note' }, 'The selection list is empty.'));
    nextNote.textContent = objects.length ? `Next: ${objects[next].name} (${next + 1}/${objects.length})` : '';
  }

  // The list names an object by all its designations ("M31, NGC224"): the first one finds it.
  const designation = (o) => String(o.name).split(',')[0].trim();

  function showCard(o) {
    state.chosen = { name: o.name, ra: o.ra, dec: o.dec };
    card.replaceChildren(el('div', { class: 'group', 'data-testid': 'object' },
      el('h3', { class: 'name' }, o.name),
      objectLines(o),
      el('div', { class: 'buttons' },
        el('button', { class: 'primary', onclick: () => post('/api/scope/goto', { name: designation(o) }) }, 'GoTo'),
        el('button', { onclick: () => { state.centre = { name: o.name, ra: o.ra, dec: o.dec }; location.hash = '#/chart'; } }, 'Centre'),
        el('button', { onclick: () => { location.hash = '#/logs/new/' + encodeURIComponent(designation(o)); } }, 'Log it'),
        el('button', { 'aria-label': 'Close', onclick: () => card.replaceChildren() }, '✕'))));
    card.scrollIntoView({ block: 'nearest' });
  }

  async function run(body) {
    const r = await post('/api/roam', body);
    if (!alive) return;
    if (r.stages && r.stages.length) { stages.textContent = r.stages.join('\n') + (r.report ? '\n' + r.report : ''); stages.hidden = false; }
    if (r.objects) { next = 0; showList(r); }
  }

  async function loadList() {
    const r = await get('/api/list');
    if (alive && r.ok) showList(r);
  }

  async function gotoNext() {
    if (!objects.length) return;
    const o = objects[next];
    const r = await post('/api/scope/goto', { name: designation(o) });
    if (!alive || !r.ok) return;
    next = (next + 1) % objects.length;
    nextNote.textContent = `Next: ${objects[next].name} (${next + 1}/${objects.length})`;
  }

  function resetCriteria() {
    for (const input of Object.values(inputs)) input.value = '0';
  }

  // The list picker ("<New list name>" is the name field) and the memo picker.
  const listName = el('input', { type: 'text', name: 'listName', placeholder: '<New list name>', maxlength: 39, autocomplete: 'off' });
  const lists = el('div', { class: 'results', 'data-testid': 'lists' });
  const memos = el('div', { class: 'results', 'data-testid': 'memos' });
  const preview = el('pre', { class: 'report', hidden: true, 'data-testid': 'preview' });
  let memoChosen = '';

  async function loadLists() {
    const r = await get('/api/lists');
    if (!alive || !r.ok) return;
    lists.replaceChildren(...r.lists.map((l) => el('button', { 'data-list': l.name, onclick: () => loadNamed(l.name) }, l.line)));
  }
  async function loadNamed(name) {
    const r = await post('/api/lists/load', { name });
    if (alive && r.ok) { next = 0; showList(r); }
  }
  async function saveNamed() {
    const name = listName.value.trim();
    if (!name) return;
    const r = await post('/api/lists/save', { name });
    if (alive && r.ok) loadLists();
  }
  async function loadMemos() {
    const r = await get('/api/memos');
    if (!alive || !r.ok) return;
    memos.replaceChildren(...r.memos.map((m) => el('button', { 'data-memo': m, onclick: () => previewMemo(m) }, m)));
  }
  async function previewMemo(file) {
    const r = await get('/api/memos/preview?' + query({ file }));
    if (!alive || !r.ok) return;
    memoChosen = file;
    preview.textContent = r.text;
    preview.hidden = false;
  }
  async function importMemo() {
    if (!memoChosen) return;
    const r = await post('/api/memos/import', { file: memoChosen });
    if (alive && r.objects) { next = 0; showList(r); }
  }
  async function exportMemo() {
    const r = await post('/api/memos/export');
    if (alive && r.ok) loadMemos();
  }

  const shortSelect = el('select', { name: 'short', id: 'roam-short' }, SHORT.map((s) => el('option', { value: s }, s)));

  pickers.append(
    el('div', { class: 'group' }, el('header', {}, el('h3', {}, 'Lists')),
      el('div', { class: 'row' }, el('label', { for: 'list-name' }, 'Name:'), Object.assign(listName, { id: 'list-name' })),
      el('div', { class: 'buttons' }, el('button', { class: 'primary', 'data-action': 'save-list', onclick: saveNamed }, 'Save')),
      lists),
    el('div', { class: 'group' }, el('header', {}, el('h3', {}, 'Memos')),
      memos, preview,
      el('div', { class: 'buttons' },
        el('button', { 'data-action': 'import-memo', onclick: importMemo }, 'Import'),
        el('button', { 'data-action': 'export-memo', onclick: exportMemo }, 'Export'))));

  container.append(el('div', { class: 'form' },
    el('div', { class: 'buttons icons' },
      el('button', { class: 'primary', 'data-action': 'new', title: 'New list', onclick: () => run({ criteria: criteria(), mode: 'new' }) }, 'N'),
      el('button', { 'data-action': 'add', title: 'Add to the list', onclick: () => run({ criteria: criteria(), mode: 'add' }) }, '+'),
      el('button', { 'data-action': 'remove', title: 'Remove from the list', onclick: () => run({ criteria: criteria(), mode: 'remove' }) }, '-'),
      el('button', { 'data-action': 'trash', title: 'No Criteria', 'aria-label': 'Trash', onclick: resetCriteria }, trashIcon())),
    el('div', { class: 'group' }, el('header', {}, el('h3', {}, 'Choose Selection Criteria')), fields,
      el('div', { class: 'row' }, el('label', { for: 'roam-short' }, 'Short selection:'), shortSelect),
      el('div', { class: 'buttons' }, el('button', { 'data-action': 'short', onclick: () => run({ short: shortSelect.value }) }, 'Select'))),
    stages,
    el('div', { class: 'buttons' }, el('button', { class: 'primary', 'data-action': 'next', onclick: gotoNext }, 'GoTo next object')),
    nextNote, card, list, pickers));

  await Promise.all([loadCriteria(), loadList(), loadLists(), loadMemos()]);
  return () => { alive = false; };
}

// The object card, shared by the chart's tap and the finder: the engine's information card
// (GET /api/info) and the object's rise, transit and set (GET /api/rise), with GoTo, Sync and
// Centre. `fallback` is what the caller already knows ({name, names, ra, dec, ...}): it is shown
// when the engine has no card for the object (a bare sky position, a comet).
import { el } from './dom.js';
import { get, post, query } from './api.js';
import { state } from './state.js';
import { hoursText, degreesText, objectName, objectLines } from './describe.js';

// "2024-07-15T23:41:07" -> "23:41"; none -> "--:--".
export function clockText(iso) {
  return typeof iso === 'string' && iso.length >= 16 ? iso.slice(11, 16) : '--:--';
}

function line(label, value) {
  return el('div', { class: 'note' }, el('span', { class: 'label' }, label + ' '), value);
}

function sizeText(arcmin) {
  return typeof arcmin === 'number' ? `${arcmin.toFixed(1)}'` : '';
}

// Lines of the engine's card.
function infoLines(info, times) {
  const v = info.visibility || {};
  const lines = [];
  const names = Array.isArray(info.names) ? info.names.filter(Boolean) : [];
  if (names.length) lines.push(line('Names', names.join(', ')));
  lines.push(line('Type', (info.type || '') + (info.constellation ? ' in ' + info.constellation : '')));
  lines.push(line('Mag', info.mag === null || info.mag === undefined ? 'unknown' : String(info.mag)));
  if (info.sizeArcmin) lines.push(line('Size', sizeText(info.sizeArcmin)));
  lines.push(el('div', { class: 'note' }, `RA ${hoursText(info.raJ2000 ?? info.ra)}  Dec ${degreesText(info.decJ2000 ?? info.dec)}`));
  lines.push(el('div', { class: 'note' }, `Alt ${degreesText(info.alt)}  Az ${degreesText(info.az).replace(/^\+/, '')}`));
  if (times) {
    const extra = times.circumpolar ? ' (circumpolar)' : times.neverRises ? ' (never rises)' : '';
    lines.push(el('div', { class: 'note', 'data-testid': 'riseset' },
      `Rise ${clockText(times.rise)}  Transit ${clockText(times.transit)}  Set ${clockText(times.set)}${extra}`));
  } else if (info.transit) {
    lines.push(line('Transit', clockText(info.transit)));
  }
  const visibility = v.word
    ? `${v.word}` + (v.bestMagnification ? `, best x${v.bestMagnification}` : '') + (v.eyepiece ? `, eyepiece ${v.eyepiece}` : '')
    : 'unknown';
  lines.push(el('div', { class: 'note visibility', 'data-testid': 'visibility' }, el('span', { class: 'label' }, 'Visibility '), visibility));
  return lines;
}

// The card's title: the names the caller shows ("Vega · HIP 91262"), or the engine's name and
// the common name.
function titleOf(info, fallback, name) {
  if (Array.isArray(fallback.names) && fallback.names.length) return objectName(fallback);
  const parts = [fallback.name || (info && info.name) || name, fallback.commonName].filter(Boolean);
  return [...new Set(parts)].join(' · ');
}

// Builds the card of the named object. onCentre(ra, dec) centres the chart on it.
export async function objectCard(name, fallback = {}, { onCentre, onClose, testid = 'object', className = 'group' } = {}) {
  const [info, times] = name
    ? await Promise.all([
      get('/api/info?' + query({ name }), { quiet: true, silent: true }),
      get('/api/rise?' + query({ name }), { quiet: true, silent: true }),
    ])
    : [{ ok: false }, { ok: false }];
  const o = info.ok ? info : fallback;
  const ra = info.ok ? info.raJ2000 : fallback.ra;
  const dec = info.ok ? info.decJ2000 : fallback.dec;
  state.chosen = { name: (o.names && o.names[0]) || o.name || name, ra, dec };
  const centre = onCentre || ((r, d) => { state.centre = { ra: r, dec: d }; location.hash = '#/chart'; });
  return el('div', { class: className + ' card', 'data-testid': testid },
    el('h3', { class: 'name' }, titleOf(info.ok ? info : null, fallback, name)),
    info.ok ? infoLines(info, times.ok ? times : null) : objectLines(fallback),
    el('div', { class: 'buttons' },
      el('button', { class: 'primary', onclick: () => post('/api/scope/goto', { ra, dec }) }, 'GoTo'),
      el('button', { onclick: () => post('/api/scope/sync', { ra, dec }) }, 'Sync'),
      el('button', { onclick: () => centre(ra, dec) }, 'Centre'),
      state.chosen.name
        ? el('button', { onclick: () => { location.hash = '#/logs/new/' + encodeURIComponent(state.chosen.name); } }, 'Log it')
        : null,
      onClose ? el('button', { 'aria-label': 'Close', onclick: onClose }, '✕') : null));
}

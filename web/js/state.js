// What the page holds between screens: the preferences it shows, the night mode and the
// object chosen last (for GoTo and Sync in the hand box).
import { get, put } from './api.js';

export const NIGHT_CYCLE = ['Off', 'Bright', 'Medium', 'Dark'];

export const state = {
  prefs: {},          // field -> value, as GET /api/prefs answers
  labels: {},         // field -> shown text of list fields
  night: document.documentElement.dataset.night || 'Off',
  chosen: null,       // {name, ra, dec} of the object chosen on the chart or in the finder
};

function applyNight(label) {
  const mode = NIGHT_CYCLE.includes(label) ? label : 'Off';
  state.night = mode;
  document.documentElement.dataset.night = mode;
  try { localStorage.setItem('nocturnel.night', mode); } catch { /* private mode */ }
  document.dispatchEvent(new CustomEvent('nightmode', { detail: mode }));
}

// When the user last chose a night mode: an answer asked for before that must not undo it.
let nightChosenAt = 0;

export function rememberPrefs(data, askedAt = Date.now()) {
  if (!data || typeof data !== 'object') return;
  const values = data.prefs || data;
  const labels = data.labels || values.labels || {};
  state.prefs = { ...state.prefs, ...values };
  state.labels = { ...state.labels, ...labels };
  if (labels.nightMode && askedAt >= nightChosenAt) applyNight(labels.nightMode);
}

export async function loadPrefs() {
  const askedAt = Date.now();
  const r = await get('/api/prefs', { quiet: true, silent: true });
  if (r.ok) rememberPrefs(r, askedAt);
  return r;
}

// Night mode is the "Night Mode" preference; the page applies it at once and saves it.
export async function setNightMode(label, save) {
  nightChosenAt = Date.now();
  applyNight(label);
  if (!save) return;
  const askedAt = Date.now();
  const r = await put('/api/prefs', { nightMode: label }, { quiet: true });
  if (r.ok) rememberPrefs(r, askedAt);
}

export const isNight = () => state.night !== 'Off';

// The sky chart: the engine draws the chart at the screen's size and pixel ratio; the page pans
// it under the finger (CSS transform at once, a new chart on release), zooms it by pinch, wheel
// or buttons through the 13 levels, rotates it, switches mode and "Chart Type", steps time,
// identifies what is tapped and follows the telescope while a drive is connected.
import { el, clear } from '../dom.js';
import { get, post, query, request, showMessages } from '../api.js';
import { state, rememberPrefs } from '../state.js';
import { showMessage } from '../modal.js';
import { hoursText } from '../describe.js';
import { objectCard } from '../card.js';

// The "Night Mode" list as stored: 0 "Off", 1 "Dark", 2 "Medium", 3 "Bright".
const NIGHT_INDEX = { Off: 0, Dark: 1, Medium: 2, Bright: 3 };
const FOV_DEG = [180, 150, 120, 90, 60, 45, 30, 20, 10, 5, 2.5, 1, 0.5];
const TAP_SLOP_PX = 10;         // a finger moving less than this is a tap
const SCOPE_POLL_MS = 2000;
const ROTATE_STEP_DEG = 45;

// The view is kept across visits of the chart screen.
const view = { zoom: 0, mode: 0, rotate: null, ra: null, dec: null, az: null, alt: null };

export function viewParams(width, height) {
  return {
    zoom: view.zoom, width: Math.round(width), height: Math.round(height), mode: view.mode,
    rotate: view.rotate ?? undefined,
    ra: view.ra ?? undefined, dec: view.dec ?? undefined,
    az: view.ra == null ? view.az ?? undefined : undefined, alt: view.ra == null ? view.alt ?? undefined : undefined,
    night: NIGHT_INDEX[state.night] ?? 0,
    scale: Math.min(2, Math.max(1, Math.round(window.devicePixelRatio || 1))),
  };
}

// Nearest zoom level to a field of view (degrees), on a log scale.
function levelForFov(fov) {
  let best = 0;
  for (let i = 1; i < FOV_DEG.length; i++)
    if (Math.abs(Math.log(FOV_DEG[i] / fov)) < Math.abs(Math.log(FOV_DEG[best] / fov))) best = i;
  return best;
}

export async function mount(container) {
  const root = el('div', { class: 'chart', 'data-testid': 'chart' });
  const img = el('img', { class: 'sky', alt: '', draggable: 'false', hidden: true });   // shown once it holds a chart
  const marker = el('div', { class: 'marker', hidden: true });
  const pick = el('div', { class: 'pick', hidden: true });
  const info = el('div', { class: 'info', 'data-testid': 'infobar' });
  let sheet = null;
  let alive = true;
  let objectUrl = null;
  let loadTurn = 0;
  let chartTypes = [];

  const size = () => ({ w: root.clientWidth, h: root.clientHeight });

  async function loadChart() {
    const turn = ++loadTurn;
    const { w, h } = size();
    if (w < 16 || h < 16) return;
    root.dataset.loading = '1';
    let r;
    try { r = await fetch('/api/chart.png?' + query(viewParams(w, h)), { cache: 'no-store' }); } catch { r = null; }
    if (!alive || turn !== loadTurn) return;
    if (!r || !r.ok) {
      let err = {};
      try { err = (await r.json()).error || {}; } catch { /* not JSON */ }
      delete root.dataset.loading;
      showMessage(err.title || 'No chart', err.detail || '');
      return;
    }
    const said = r.headers.get('X-Nocturnel-Messages');
    if (said) { try { showMessages(JSON.parse(said)); } catch { /* not a list */ } }
    const blob = await r.blob();
    const url = URL.createObjectURL(blob);
    const next = new Image();
    next.src = url;
    try { await next.decode(); } catch { /* shown anyway */ }
    if (!alive || turn !== loadTurn) { URL.revokeObjectURL(url); return; }
    img.src = url;
    img.hidden = false;
    img.style.width = w + 'px';
    img.style.height = h + 'px';
    img.style.transform = '';
    if (objectUrl) URL.revokeObjectURL(objectUrl);
    objectUrl = url;
    delete root.dataset.loading;
    placeMarker();
    await updateInfo();
    root.dataset.zoom = String(view.zoom);
    root.dataset.loaded = String(Number(root.dataset.loaded || 0) + 1);
  }

  async function updateInfo() {
    const now = await get('/api/now', { quiet: true, silent: true });
    if (!alive) return;
    clear(info);
    const fov = FOV_DEG[view.zoom];
    info.append(el('span', {}, `FOV ${fov}°`), el('span', {}, `Zoom ${view.zoom}`));
    if (now.ok) {
      const two = (n) => String(n).padStart(2, '0');
      if (now.year !== undefined) info.append(el('span', { 'data-testid': 'moment' }, `${now.year}-${two(now.month)}-${two(now.day)} ${two(now.hour)}:${two(now.minute)}`));
      const lst = now.lst;
      if (lst !== undefined) info.append(el('span', {}, 'LST ' + (typeof lst === 'number' ? hoursText(lst) : lst)));
      if (now.site || now.siteName) info.append(el('span', {}, now.site?.name || now.siteName || ''));
    }
    const type = state.labels.chartType;
    if (type) info.append(el('span', {}, type));
  }

  // The sky position (and any object) under a chart point, in CSS pixels.
  async function identify(x, y, silent) {
    const { w, h } = size();
    const cx = Math.max(0, Math.min(w - 1, Math.round(x)));
    const cy = Math.max(0, Math.min(h - 1, Math.round(y)));
    return get('/api/identify?' + query({ ...viewParams(w, h), x: cx, y: cy }), { quiet: true, silent });
  }

  function skyOf(answer) {
    const o = answer.position || answer.sky || answer;
    return (typeof o.ra === 'number' && typeof o.dec === 'number') ? { ra: o.ra, dec: o.dec } : null;
  }

  async function centreOn(ra, dec) {
    view.ra = ra; view.dec = dec; view.az = null; view.alt = null;
    await loadChart();
  }

  async function panBy(dx, dy) {
    const { w, h } = size();
    const r = await identify(w / 2 - dx, h / 2 - dy, true);
    const sky = r.ok && skyOf(r);
    if (sky) await centreOn(sky.ra, sky.dec);
    else { img.style.transform = ''; }
  }

  async function zoomTo(level) {
    const z = Math.max(0, Math.min(12, level));
    if (z === view.zoom) { img.style.transform = ''; return; }
    view.zoom = z;
    await loadChart();
  }

  function closeSheet() { if (sheet) { sheet.remove(); sheet = null; } pick.hidden = true; }

  async function tapAt(x, y) {
    closeSheet();
    const r = await identify(x, y, false);
    if (!alive || !r.ok) return;
    const o = r.found === false ? null : r;
    if (!o) return;
    const scale = viewParams(1, 1).scale;
    pick.style.left = (typeof o.x === 'number' ? o.x / scale : x) + 'px';
    pick.style.top = (typeof o.y === 'number' ? o.y / scale : y) + 'px';
    pick.hidden = false;
    state.chosen = { name: (o.names && o.names[0]) || o.name || '', ra: o.ra, dec: o.dec };
    const name = o.name || o.designation || (o.names && o.names[0]) || '';
    const card = await objectCard(name, o, {
      className: 'sheet', onClose: closeSheet, onCentre: (ra, dec) => { closeSheet(); centreOn(ra, dec); },
    });
    if (!alive) return;
    closeSheet();
    pick.hidden = false;
    sheet = card;
    root.append(sheet);
  }

  // Telescope marker: asks where the drive points, with the view so the engine places it.
  let scopeTimer = null;
  let lastScope = null;
  async function pollScope() {
    const { w, h } = size();
    const r = await get('/api/scope/position?' + query(viewParams(w, h)), { quiet: true, silent: true });
    if (!alive) return;
    lastScope = r.ok && r.connected !== false ? r : null;
    placeMarker();
  }
  function placeMarker() {
    const p = lastScope && (lastScope.screen || lastScope);
    if (p && typeof p.x === 'number' && typeof p.y === 'number') {
      marker.style.left = p.x + 'px';
      marker.style.top = p.y + 'px';
      marker.hidden = false;
    } else marker.hidden = true;
  }

  // Steps the observing moment by the "Time Step" preference (the engine keeps the moment).
  async function stepTime(steps) {
    const r = await post('/api/time/step', { steps });
    if (r.ok) await loadChart();
  }

  function chooseChartType() {
    closeSheet();
    const current = state.labels.chartType;
    sheet = el('div', { class: 'sheet', 'data-testid': 'chart-type' },
      el('h3', {}, 'Chart Type'),
      el('div', { class: 'results' }, chartTypes.map((label) => el('button', {
        class: label === current ? 'primary' : '',
        onclick: async () => {
          closeSheet();
          const r = await request('PUT', '/api/prefs', { chartType: label });
          if (r.ok) { rememberPrefs(r); state.labels.chartType = label; view.ra = view.dec = view.az = view.alt = null; await loadChart(); }
        },
      }, label))),
      el('div', { class: 'buttons' }, el('button', { onclick: closeSheet }, 'Cancel')));
    root.append(sheet);
  }

  const tools = el('div', { class: 'tools' },
    el('button', { 'aria-label': 'Zoom in', 'data-testid': 'zoom-in', onclick: () => zoomTo(view.zoom + 1) }, '+'),
    el('button', { 'aria-label': 'Zoom out', 'data-testid': 'zoom-out', onclick: () => zoomTo(view.zoom - 1) }, '−'),
    el('button', { 'aria-label': 'Rotate', 'data-testid': 'rotate', onclick: () => { view.rotate = ((view.rotate ?? 180) + ROTATE_STEP_DEG) % 360; loadChart(); } }, '⟳'),
    el('button', { 'aria-label': 'Projection mode', 'data-testid': 'mode', onclick: () => { view.mode = view.mode ? 0 : 1; loadChart(); } }, '◐'),
    el('button', { 'aria-label': 'Chart Type', 'data-testid': 'chart-type-button', onclick: chooseChartType }, '☰'));
  const steps = el('div', { class: 'steps' },
    el('button', { 'aria-label': 'Time forward', 'data-testid': 'time-forward', onclick: () => stepTime(1) }, '▶'),
    el('button', { 'aria-label': 'Time back', 'data-testid': 'time-back', onclick: () => stepTime(-1) }, '◀'),
    el('button', { 'aria-label': 'Whole sky', 'data-testid': 'home', onclick: () => { Object.assign(view, { zoom: 0, ra: null, dec: null, az: null, alt: null, rotate: null }); loadChart(); } }, '⌂'));

  root.append(img, marker, pick, tools, steps, info);
  container.append(root);

  // Gestures: one finger pans (or taps), two fingers pinch; the wheel zooms.
  const pointers = new Map();
  let gesture = null;
  const isControl = (t) => t.closest('button, .sheet, .info');
  root.addEventListener('pointerdown', (e) => {
    if (isControl(e.target)) return;
    try { root.setPointerCapture(e.pointerId); } catch { /* a synthetic or vanished pointer */ }
    pointers.set(e.pointerId, { x: e.clientX, y: e.clientY });
    const rect = root.getBoundingClientRect();
    if (pointers.size === 1) gesture = { kind: 'pan', x0: e.clientX, y0: e.clientY, dx: 0, dy: 0, rect, moved: false };
    else if (pointers.size === 2) {
      const [a, b] = [...pointers.values()];
      gesture = { kind: 'pinch', d0: Math.hypot(a.x - b.x, a.y - b.y) || 1, scale: 1, rect,
        cx: (a.x + b.x) / 2 - rect.left, cy: (a.y + b.y) / 2 - rect.top };
    }
  });
  root.addEventListener('pointermove', (e) => {
    if (!pointers.has(e.pointerId) || !gesture) return;
    pointers.set(e.pointerId, { x: e.clientX, y: e.clientY });
    if (gesture.kind === 'pan') {
      gesture.dx = e.clientX - gesture.x0;
      gesture.dy = e.clientY - gesture.y0;
      if (Math.hypot(gesture.dx, gesture.dy) > TAP_SLOP_PX) gesture.moved = true;
      if (gesture.moved) img.style.transform = `translate(${gesture.dx}px, ${gesture.dy}px)`;
    } else if (pointers.size >= 2) {
      const [a, b] = [...pointers.values()];
      gesture.scale = Math.hypot(a.x - b.x, a.y - b.y) / gesture.d0;
      const { cx, cy, scale } = gesture;
      img.style.transform = `translate(${cx - cx * scale}px, ${cy - cy * scale}px) scale(${scale})`;
    }
  });
  const release = (e, cancelled) => {
    if (!pointers.has(e.pointerId)) return;
    pointers.delete(e.pointerId);
    const g = gesture;
    if (!g) return;
    if (g.kind === 'pinch') {
      if (pointers.size > 0) return;
      gesture = null;
      if (!cancelled) zoomTo(levelForFov(FOV_DEG[view.zoom] / g.scale)); else img.style.transform = '';
      return;
    }
    gesture = null;
    if (cancelled) { img.style.transform = ''; return; }
    if (g.moved) panBy(g.dx, g.dy);
    else tapAt(g.x0 - g.rect.left, g.y0 - g.rect.top);
  };
  root.addEventListener('pointerup', (e) => release(e, false));
  root.addEventListener('pointercancel', (e) => release(e, true));
  let wheelTimer = null;
  let wheelSum = 0;
  root.addEventListener('wheel', (e) => {
    e.preventDefault();
    wheelSum += e.deltaY;
    clearTimeout(wheelTimer);
    wheelTimer = setTimeout(() => { const step = wheelSum < 0 ? 1 : -1; wheelSum = 0; zoomTo(view.zoom + step); }, 120);
  }, { passive: false });

  let resizeTimer = null;
  const onResize = () => { clearTimeout(resizeTimer); resizeTimer = setTimeout(loadChart, 200); };
  window.addEventListener('resize', onResize);
  const onNight = () => loadChart();
  document.addEventListener('nightmode', onNight);

  if (state.centre) {
    Object.assign(view, { ra: state.centre.ra, dec: state.centre.dec, az: null, alt: null, zoom: Math.max(view.zoom, 6) });
    state.centre = null;
  }
  const forms = await get('/api/forms/prefs3', { quiet: true, silent: true });
  chartTypes = listEntries(forms, 'Chart Type');
  if (!chartTypes.length) chartTypes = ['Equatorial Sky', 'Visible Sky', 'Whole Sky', 'Horizon View', 'Sky Map'];
  await loadChart();
  // The marker follows the mount while a drive is connected, one read at a time; it stops when
  // the engine's answer gives no place on this chart.
  let placeable = true;
  const followScope = async () => {
    if (!alive) return;
    if (state.scopeConnected && placeable) {
      await pollScope();
      if (lastScope && typeof (lastScope.screen || lastScope).x !== 'number') placeable = false;
    } else if (lastScope) { lastScope = null; placeMarker(); }
    if (alive) scopeTimer = setTimeout(followScope, SCOPE_POLL_MS);
  };
  followScope();

  return () => {
    alive = false;
    clearTimeout(scopeTimer);
    clearTimeout(resizeTimer);
    window.removeEventListener('resize', onResize);
    document.removeEventListener('nightmode', onNight);
    if (objectUrl) URL.revokeObjectURL(objectUrl);
  };
}

// The entries of the list captioned `label` in a form description, top to bottom.
function listEntries(form, label) {
  const found = [];
  const walk = (node) => {
    if (!node || typeof node !== 'object') return;
    if (Array.isArray(node)) { node.forEach(walk); return; }
    if (node.label === label && Array.isArray(node.entries)) found.push(...node.entries.map((e) => (typeof e === 'string' ? e : e.label ?? e.text)));
    Object.values(node).forEach(walk);
  };
  walk(form);
  return found;
}

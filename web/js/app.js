// The main window: the menus, the screen router (#/id), the night-mode button and the
// offline worker.
import { el, clear } from './dom.js';
import { MENUS, SCREENS } from './screens.js';
import { state, loadPrefs, setNightMode, NIGHT_CYCLE } from './state.js';

const screenNode = document.getElementById('screen');
const titleNode = document.getElementById('title');
const backButton = document.getElementById('back');
let cleanup = null;
let showing = 0;

function mainWindow() {
  titleNode.textContent = 'Nocturnel';
  backButton.hidden = true;
  screenNode.append(el('nav', { class: 'menus' }, MENUS.map((menu) =>
    el('section', { class: 'menu', 'data-menu': menu },
      el('h2', {}, menu),
      SCREENS.filter((s) => s.menu === menu).map((s) =>
        el('button', { 'data-screen': s.id, onclick: () => { location.hash = '#/' + s.id; } }, s.label))))));
}

async function route() {
  const turn = ++showing;
  if (cleanup) { try { cleanup(); } catch { /* a screen's cleanup never blocks the next */ } cleanup = null; }
  clear(screenNode);
  const [, id, arg] = (location.hash.match(/^#\/([\w-]+)(?:\/(.*))?$/) || []);
  const screen = SCREENS.find((s) => s.id === id);
  if (!screen) { mainWindow(); return; }
  titleNode.textContent = screen.label;
  backButton.hidden = false;
  const module = await import(screen.module);
  if (turn !== showing) return;
  const container = el('div', { class: 'screen-' + screen.id });
  screenNode.append(container);
  cleanup = (await module.mount(container, { arg: arg ? decodeURIComponent(arg) : '', setTitle: (t) => { titleNode.textContent = t; } })) || null;
}

backButton.addEventListener('click', () => {
  if (history.length > 1 && location.hash) history.back(); else location.hash = '';
});
document.getElementById('night').addEventListener('click', () => {
  const next = NIGHT_CYCLE[(NIGHT_CYCLE.indexOf(state.night) + 1) % NIGHT_CYCLE.length];
  setNightMode(next, true);
});
window.addEventListener('hashchange', route);

// The offline worker (browsers allow it on loopback and https only).
if ('serviceWorker' in navigator) navigator.serviceWorker.register('sw.js').catch(() => {});

loadPrefs().finally(route);

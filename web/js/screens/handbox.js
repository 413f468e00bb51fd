// The telescope hand box: connect, the four rates, press-and-hold N/S/E/W that stops on
// release (and whenever the finger or the page is lost), stop all, the position read-out and
// GoTo/Sync of the chosen object. A held move is renewed every RENEW_MS: should the release
// never arrive (tab closed, phone asleep, network lost) the engine stops the move itself
// about a second after the last renewal.
import { el } from '../dom.js';
import { get, post as send, query } from '../api.js';
import { state } from '../state.js';
import { objectName, hoursText, degreesText } from '../describe.js';

const RATES = ['Slew', 'Find', 'Centre', 'Guide'];   // 0 fastest .. 3 slowest
const POLL_MS = 3000;   // quiet time before the read-out asks the mount again
const RENEW_MS = 250;   // a held move's renewals (the engine's watchdog waits about 1 s)

export async function mount(container) {
  const readout = el('div', { class: 'readout', 'data-testid': 'position' }, '—');
  const chosenLine = el('div', { class: 'note', 'data-testid': 'chosen' });
  const nameInput = el('input', { type: 'search', name: 'target', placeholder: 'M 31, NGC 7000, HIP 91262', autocomplete: 'off', enterkeyhint: 'search' });
  const status = el('div', { class: 'note', 'data-testid': 'scope-status' }, state.scopeConnected ? 'Connected' : 'Not connected');
  let rate = state.scopeRate ?? 0;
  // Every command marks the hand box busy: the position read-out waits for a quiet moment, so
  // that it never delays a command.
  let lastCommand = 0;
  let commandsInFlight = 0;
  const command = async (request) => {
    commandsInFlight++;
    try { return await request(); } finally { commandsInFlight--; lastCommand = Date.now(); }
  };
  const post = (...args) => command(() => send(...args));
  let alive = true;
  const moving = new Set();

  function showPosition(r) {
    if (!r || !r.ok) return;
    const p = r.position || r;
    if (typeof p.ra !== 'number') return;
    readout.textContent = `RA ${p.raText || hoursText(p.ra)}\nDec ${p.decText || degreesText(p.dec)}`;
    readout.style.whiteSpace = 'pre-line';
    readout.dataset.ra = String(p.ra);
    readout.dataset.dec = String(p.dec);
  }
  function showChosen() {
    const c = state.chosen;
    chosenLine.textContent = c ? `${c.name || 'Object'}: RA ${hoursText(c.ra)}  Dec ${degreesText(c.dec)}` : 'No object chosen: find one below or tap one on the chart.';
  }

  async function connect() {
    const r = await post('/api/scope/connect');
    state.scopeConnected = r.ok && r.connected !== false;
    status.textContent = state.scopeConnected ? 'Connected' : 'Not connected';
    if (state.scopeConnected) showPosition(await post('/api/scope/read', {}, { quiet: true }));
  }

  async function disconnect() {
    stopMoving();
    const r = await post('/api/scope/disconnect');
    if (r.ok) { state.scopeConnected = false; status.textContent = 'Not connected'; }
  }

  const rateButtons = RATES.map((label, i) => el('button', {
    class: i === rate ? 'on' : '', 'data-rate': String(i),
    onclick: async () => {
      const r = await post('/api/scope/rate', { rate: i });
      if (!r.ok) return;
      rate = state.scopeRate = i;
      rateButtons.forEach((b, j) => b.classList.toggle('on', j === i));
    },
  }, label));

  // A stop goes out after its move has been answered, so it can never overtake it.
  const moveSent = new Map();
  const renewals = new Map();
  function stopRenewing(direction) {
    clearInterval(renewals.get(direction));
    renewals.delete(direction);
  }
  function stop(direction) {
    stopRenewing(direction);
    if (!moving.delete(direction)) return;
    const sent = moveSent.get(direction) || Promise.resolve();
    moveSent.delete(direction);
    sent.then(() => post('/api/scope/stop', { dir: direction }, { quiet: true }));
  }
  function stopMoving() { for (const d of [...moving]) stop(d); }

  function moveButton(direction, label) {
    const b = el('button', { 'data-direction': direction, 'aria-label': 'Move ' + label }, label);
    b.addEventListener('pointerdown', (e) => {
      e.preventDefault();
      try { b.setPointerCapture(e.pointerId); } catch { /* a synthetic or vanished pointer */ }
      if (moving.has(direction)) return;
      moving.add(direction);
      b.classList.add('held');
      moveSent.set(direction, post('/api/scope/move', { dir: direction }, { quiet: true }).then((r) => {
        if (!r.ok) { moving.delete(direction); b.classList.remove('held'); return; }
        if (!moving.has(direction) || renewals.has(direction)) return;   // released meanwhile, or renewed already
        renewals.set(direction, setInterval(async () => {
          const renewed = await send('/api/scope/move/renew', { dir: direction }, { quiet: true, silent: true });
          // Already stopped by the engine (no renewal came in time): the key lets go too.
          if (renewed.ok && renewed.held === false && renewals.has(direction)) {
            stopRenewing(direction);
            moving.delete(direction);
            moveSent.delete(direction);
            b.classList.remove('held');
          }
        }, RENEW_MS));
      }));
    });
    const end = () => { b.classList.remove('held'); stop(direction); };
    for (const type of ['pointerup', 'pointercancel', 'lostpointercapture']) b.addEventListener(type, end);
    b.addEventListener('contextmenu', (e) => e.preventDefault());
    return b;
  }

  async function findTarget() {
    const name = nameInput.value.trim();
    if (!name) return;
    const r = await command(() => get('/api/find?' + query({ name })));
    if (!r.ok) return;
    const o = r.object || r;
    state.chosen = { name: objectName(o) || name, ra: o.ra, dec: o.dec };
    showChosen();
  }

  // The place (J2000) is sent, not the name: the engine goes where the page showed.
  const target = () => state.chosen && { ra: state.chosen.ra, dec: state.chosen.dec };

  container.append(el('div', { class: 'form handbox' },
    el('div', { class: 'group' },
      el('div', { class: 'buttons' },
        el('button', { class: 'primary', 'data-testid': 'connect', onclick: connect }, 'Connect'),
        el('button', { 'data-testid': 'disconnect', onclick: disconnect }, 'Disconnect'),
        el('button', { 'data-testid': 'read', onclick: async () => showPosition(await post('/api/scope/read')) }, 'Read')),
      status, readout),
    el('div', { class: 'group' }, el('header', {}, el('h3', {}, 'Rate')), el('div', { class: 'rates' }, rateButtons)),
    el('div', { class: 'pad' },
      el('span'), moveButton('n', 'N'), el('span'),
      moveButton('e', 'E'),
      el('button', { class: 'primary', 'data-testid': 'stop-all', onclick: () => { for (const d of [...renewals.keys()]) stopRenewing(d); moving.clear(); post('/api/scope/stop', {}); } }, 'Stop'),
      moveButton('w', 'W'),
      el('span'), moveButton('s', 'S'), el('span')),
    el('div', { class: 'group' },
      el('header', {}, el('h3', {}, 'Object')),
      chosenLine,
      el('form', { onsubmit: (e) => { e.preventDefault(); nameInput.blur(); findTarget(); } },
        el('div', { class: 'row' }, nameInput, el('button', { type: 'submit' }, 'Find'))),
      el('div', { class: 'buttons' },
        el('button', { class: 'primary', 'data-testid': 'goto', onclick: () => target() && post('/api/scope/goto', target()) }, 'GoTo'),
        el('button', { 'data-testid': 'sync', onclick: () => target() && post('/api/scope/sync', target()) }, 'Sync')))));
  showChosen();

  const onBlur = () => stopMoving();
  const onHidden = () => { if (document.hidden) stopMoving(); };
  window.addEventListener('blur', onBlur);
  document.addEventListener('visibilitychange', onHidden);
  // The read-out follows the mount: one read at a time, the next one a moment after it ends.
  let timer = null;
  const poll = async () => {
    if (!alive) return;
    const quiet = !moving.size && !commandsInFlight && Date.now() - lastCommand >= POLL_MS;
    if (state.scopeConnected && quiet) {
      const r = await get('/api/scope/position', { quiet: true, silent: true });
      if (!alive) return;
      if (r.ok && r.connected === false) { state.scopeConnected = false; status.textContent = 'Not connected'; }
      showPosition(r);
      lastCommand = Date.now();
    }
    timer = setTimeout(poll, 500);
  };
  timer = setTimeout(poll, POLL_MS);

  return () => {
    alive = false;
    stopMoving();
    clearTimeout(timer);
    window.removeEventListener('blur', onBlur);
    document.removeEventListener('visibilitychange', onHidden);
  };
}

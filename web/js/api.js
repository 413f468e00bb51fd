// The page's one door to the engine: JSON requests under /api/. Every answer's "messages" are
// shown as message boxes; a 4xx/5xx answer's "error" too. While a request is under way for a
// moment the progress box offers Stop (POST /api/stop) and the engine's questions are asked.
import { showMessage, ask, showProgress } from './modal.js';

const PROGRESS_AFTER_MS = 700;
const QUESTION_POLL_MS = 400;

function messageOf(error) {
  if (!error) return { title: 'Request failed', detail: '' };
  if (typeof error === 'string') return { title: error, detail: '' };
  return { title: error.title || error.message || 'Request failed', detail: error.detail || '' };
}

export function showMessages(list) {
  for (const m of list || []) showMessage(m.title || '', m.detail || '', m.caption || 'Information');
}

// Asks the engine's pending question, if any, and sends the answer back.
async function answerPendingQuestion() {
  let q;
  try {
    const r = await fetch('/api/question', { cache: 'no-store' });
    if (!r.ok) return;
    q = await r.json();
  } catch { return; }
  const pending = q && (q.question || q.text);
  if (!pending) return;
  const yes = await ask(typeof pending === 'string' ? pending : pending.text);
  await fetch('/api/answer', {
    method: 'POST', headers: { 'Content-Type': 'application/json' },
    body: JSON.stringify({ id: q.id, yes }),
  }).catch(() => {});
}

// Sends one request. Resolves to the parsed JSON (with .ok) or {ok:false, error}; never throws.
// opts.quiet: no progress box and no question polling (timers, chart tiles).
export async function request(method, path, body, opts = {}) {
  let hideProgress = null;
  let polling = null;
  let done = false;
  const timer = opts.quiet ? null : setTimeout(() => {
    if (done) return;
    hideProgress = showProgress(() => fetch('/api/stop', { method: 'POST' }).catch(() => {}));
    let asking = false;
    polling = setInterval(async () => {
      if (asking || done) return;
      asking = true;
      await answerPendingQuestion();
      asking = false;
    }, QUESTION_POLL_MS);
  }, PROGRESS_AFTER_MS);
  try {
    const init = { method, cache: 'no-store', headers: {} };
    if (body !== undefined) {
      init.headers['Content-Type'] = 'application/json';
      init.body = JSON.stringify(body);
    }
    const r = await fetch(path, init);
    let data = {};
    const text = await r.text();
    try { data = text ? JSON.parse(text) : {}; } catch { data = { error: { title: 'Bad answer', detail: text.slice(0, 120) } }; }
    if (data === null || typeof data !== 'object' || Array.isArray(data)) data = { value: data };
    const messages = Array.isArray(data.messages) ? data.messages : [];
    if (!opts.silent) showMessages(messages);
    if (!r.ok) {
      // A failed job's error repeats its first message: shown once.
      const m = messageOf(data.error);
      if (!opts.silent && !messages.length) showMessage(m.title, m.detail);
      return { ...data, ok: false, status: r.status };
    }
    return { ...data, ok: true, status: r.status };
  } catch (e) {
    if (!opts.silent) showMessage('No answer from Nocturnel', 'Check that the program still runs.');
    return { ok: false, error: { title: String(e) } };
  } finally {
    done = true;
    clearTimeout(timer);
    if (polling) clearInterval(polling);
    if (hideProgress) hideProgress();
  }
}

export const get = (path, opts) => request('GET', path, undefined, opts);
export const post = (path, body, opts) => request('POST', path, body ?? {}, opts);
export const put = (path, body, opts) => request('PUT', path, body, opts);

export function query(params) {
  const q = new URLSearchParams();
  for (const [k, v] of Object.entries(params)) if (v !== undefined && v !== null && v !== '') q.set(k, v);
  return q.toString();
}

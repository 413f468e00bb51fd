// Modal boxes: the program's message box (caption, two lines), its Yes/No questions and the
// progress box of long requests. Boxes queue: one is shown at a time, in order.
import { el } from './dom.js';

const root = () => document.getElementById('modal-root');
let queue = Promise.resolve();

function open(build) {
  const next = queue.then(() => new Promise((resolve) => {
    const back = el('div', { class: 'modal-back', role: 'dialog', 'aria-modal': 'true' });
    const close = (value) => { back.remove(); resolve(value); };
    back.append(build(close));
    root().append(back);
    const first = back.querySelector('button');
    if (first) first.focus();
  }));
  queue = next.catch(() => {});
  return next;
}

// The message box: caption "Information", title line and detail line.
export function showMessage(title, detail = '', caption = 'Information') {
  return open((close) => el('div', { class: 'modal message' },
    el('h2', {}, caption),
    el('p', { class: 'title' }, title || ''),
    detail ? el('p', { class: 'detail' }, detail) : '',
    el('div', { class: 'buttons' }, el('button', { class: 'primary', onclick: () => close(true) }, 'OK'))));
}

// A question of the engine: resolves true for "Yes", false for "No".
export function ask(text, caption = 'Question') {
  return open((close) => el('div', { class: 'modal question' },
    el('h2', {}, caption),
    el('p', {}, text),
    el('div', { class: 'buttons' },
      el('button', { class: 'primary', onclick: () => close(true) }, 'Yes'),
      el('button', { onclick: () => close(false) }, 'No'))));
}

// The progress box of a long request; returns a function that removes it. onStop runs once
// on the Stop button or on any key ("Press any key to stop.").
export function showProgress(onStop) {
  const back = el('div', { class: 'modal-back progress', role: 'dialog', 'aria-modal': 'true' });
  let stopped = false;
  const stop = () => { if (!stopped) { stopped = true; onStop(); } };
  const onKey = (e) => { e.preventDefault(); stop(); };
  back.append(el('div', { class: 'modal' },
    el('h2', {}, 'Working'),
    el('p', {}, 'Press any key to stop.'),
    el('div', { class: 'buttons' }, el('button', { class: 'primary', onclick: stop }, 'Stop'))));
  root().append(back);
  window.addEventListener('keydown', onKey);
  return () => { window.removeEventListener('keydown', onKey); back.remove(); };
}

// Lines that describe a found or tapped object: names, magnitude, type, RA/Dec and Alt/Az, with
// the engine's own angle texts when it sends them.
import { el } from './dom.js';

export function hoursText(h) {
  if (typeof h !== 'number' || !isFinite(h)) return h ?? '';
  const s = Math.round(h * 3600);
  return `${String(Math.floor(s / 3600) % 24).padStart(2, '0')}h${String(Math.floor(s / 60) % 60).padStart(2, '0')}m${String(s % 60).padStart(2, '0')}s`;
}
export function degreesText(d) {
  if (typeof d !== 'number' || !isFinite(d)) return d ?? '';
  const s = Math.round(Math.abs(d) * 3600);
  return `${d < 0 ? '-' : '+'}${String(Math.floor(s / 3600)).padStart(2, '0')}°${String(Math.floor(s / 60) % 60).padStart(2, '0')}'${String(s % 60).padStart(2, '0')}"`;
}

export function objectName(o) {
  const names = o.names || (o.name ? [o.name] : []);
  return Array.isArray(names) ? names.filter(Boolean).join(' · ') : String(names);
}

export function objectLines(o) {
  const lines = [];
  const mag = o.magnitude ?? o.mag;
  if (mag !== undefined) lines.push(mag === null ? 'Magnitude unknown' : `Mag ${mag}`);
  if (o.type) lines.push(o.type + (o.constellation ? ' in ' + o.constellation : ''));
  lines.push(`RA ${o.raText || hoursText(o.ra)}  Dec ${o.decText || degreesText(o.dec)}`);
  if (o.alt !== undefined || o.az !== undefined) lines.push(`Alt ${o.altText || degreesText(o.alt)}  Az ${o.azText || degreesText(o.az)}`);
  return lines.map((t) => el('div', { class: 'note' }, t));
}

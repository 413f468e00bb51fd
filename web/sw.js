// Offline worker: the page's own files are kept in a cache and served from the network when it
// answers, from the cache when it does not. Engine answers (/api/) are never cached.
const CACHE = 'nocturnel-page-v1';
const FILES = [
  './', 'index.html', 'style.css', 'manifest.webmanifest',
  'icons/icon.svg', 'icons/icon-192.png', 'icons/icon-512.png',
  'js/app.js', 'js/api.js', 'js/dom.js', 'js/modal.js', 'js/state.js', 'js/screens.js', 'js/form.js',
  'js/formscreen.js', 'js/describe.js', 'js/card.js',
  'js/screens/chart.js', 'js/screens/finder.js', 'js/screens/datetime.js', 'js/screens/prefs.js',
  'js/screens/location.js', 'js/screens/handbox.js', 'js/screens/align.js', 'js/screens/report.js',
  'js/screens/roamer.js', 'js/screens/logs.js', 'js/screens/planets.js', 'js/screens/moon.js',
  'js/screens/events.js', 'js/screens/twilight.js',
];

self.addEventListener('install', (event) => {
  event.waitUntil(caches.open(CACHE).then((c) => c.addAll(FILES)).catch(() => {}).then(() => self.skipWaiting()));
});

self.addEventListener('activate', (event) => {
  event.waitUntil(caches.keys()
    .then((keys) => Promise.all(keys.filter((k) => k !== CACHE).map((k) => caches.delete(k))))
    .then(() => self.clients.claim()));
});

self.addEventListener('fetch', (event) => {
  const url = new URL(event.request.url);
  if (event.request.method !== 'GET' || url.origin !== self.location.origin || url.pathname.startsWith('/api/')) return;
  event.respondWith(fetch(event.request).then((answer) => {
    if (answer.ok) {
      const copy = answer.clone();
      caches.open(CACHE).then((c) => c.put(event.request, copy)).catch(() => {});
    }
    return answer;
  }).catch(() => caches.match(event.request, { ignoreSearch: true }).then((hit) => hit || caches.match('index.html'))));
});

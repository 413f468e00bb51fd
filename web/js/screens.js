// Every screen of the main window, as data: its menu, its label and the module that draws it.
// A new screen is one line here and one module in screens/ exporting
//   mount(container, ctx) -> optional cleanup function.
export const MENUS = ['Tools', 'Assistants', 'Devices', 'Settings'];

export const SCREENS = [
  { id: 'chart', menu: 'Tools', label: 'Sky Chart', module: './screens/chart.js' },
  { id: 'finder', menu: 'Tools', label: 'Find Object', module: './screens/finder.js' },
  { id: 'logs', menu: 'Tools', label: 'Observer Logs', module: './screens/logs.js' },
  { id: 'planets', menu: 'Tools', label: 'Planets', module: './screens/planets.js' },
  { id: 'moon', menu: 'Tools', label: 'Moon', module: './screens/moon.js' },
  { id: 'twilight', menu: 'Tools', label: 'Twilight', module: './screens/twilight.js' },
  { id: 'events', menu: 'Assistants', label: 'Events', module: './screens/events.js' },
  { id: 'align', menu: 'Assistants', label: '2 Stars Alignment', module: './screens/align.js' },
  { id: 'roamer', menu: 'Assistants', label: 'SkyRoamer', module: './screens/roamer.js' },
  { id: 'report', menu: 'Assistants', label: 'Alignment Report', module: './screens/report.js' },
  { id: 'scope', menu: 'Devices', label: 'Telescope', module: './screens/handbox.js' },
  { id: 'datetime', menu: 'Settings', label: 'Date & Time', module: './screens/datetime.js' },
  { id: 'prefs', menu: 'Settings', label: 'Preferences', module: './screens/prefs.js' },
  { id: 'location', menu: 'Settings', label: 'Location', module: './screens/location.js' },
];

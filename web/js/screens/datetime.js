// The date/time dialog: local time or UT, a Julian date with its "JD" button, manual or
// automatic time.
import { mountForm } from '../formscreen.js';

export async function mount(container, ctx) {
  await mountForm(container, ctx, 'datetime');
}

// Preference 1/6 .. 6/6, walked with "Prev" and "Next", closed with "Ok" (#/prefs/N opens page N).
import { mountForm } from '../formscreen.js';

export async function mount(container, ctx) {
  const page = Math.max(1, Math.min(6, Number(ctx.arg) || 1));
  await mountForm(container, ctx, 'prefs' + page, { onShow: (form) => container.setAttribute('data-page', form.id || '') });
}

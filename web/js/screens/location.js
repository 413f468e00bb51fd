// The Location page: site, weather, sky quality, the daylight-saving box and Site1..Site3.
import { mountForm } from '../formscreen.js';

export async function mount(container, ctx) {
  await mountForm(container, ctx, 'location');
}

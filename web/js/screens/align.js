// The two-star alignment form: each star's time, RA, Dec and the two telescope angles, typed or
// read from the drive; the engine computes the matrix on "Ok".
import { mountForm } from '../formscreen.js';

export async function mount(container, ctx) {
  await mountForm(container, ctx, 'align');
}

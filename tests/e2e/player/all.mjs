// All tests of the player in one process, so that they share the browser and the movie: node --test player/all.mjs
import fs from 'node:fs';

for (const name of fs.readdirSync(new URL('.', import.meta.url)).sort()) {
  if (name.endsWith('.test.mjs')) await import(`./${name}`);
}

// Published folders made here, without a recording: the player of install/mp4, a movie of one colour for each slide, and
// the data files in the form that the publisher writes them.
import { spawnSync } from 'node:child_process';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import { fileURLToPath, pathToFileURL } from 'node:url';

const INSTALL = path.resolve(path.dirname(fileURLToPath(import.meta.url)), '../../../install/mp4');
export const SECONDS = 5; // of each slide of the movie
export const COLOURS = ['203864', '8a1c1c', '1c6b3a', 'b8860b', '5b2c83', '0e7490', '3f3f46', 'c2410c'];
export const TITLES = ['How a Key Frame Works', 'Étude: la répétition', 'Straße und Größe', '关键帧是什么？',
  'שלום: a title from the right', 'What a key frame costs', 'How a player finds your slide', 'Three things to take home'];

const root = fs.mkdtempSync(path.join(os.tmpdir(), 'kestrum-player.'));
process.on('exit', () => fs.rmSync(root, { recursive: true, force: true }));
let movies = 0;
let folders = 0;

export function run(program, ...words) {
  const done = spawnSync(program, words, { encoding: 'buffer', maxBuffer: 64 << 20 });
  if (done.status !== 0) throw new Error(`${program} ended with ${done.status}\n${done.stderr}`);
  return done.stdout;
}

/** Slides of one colour each; a key frame at the begin of each, 25 pictures a second. */
export function makeMovie(colours = COLOURS, seconds = SECONDS) {
  const movie = path.join(root, `movie-${++movies}.mp4`);
  const slides = colours.flatMap((colour) => ['-f', 'lavfi', '-i', `color=0x${colour}:size=640x360:rate=25:duration=${seconds}`]);
  const begins = colours.map((_, at) => at * seconds).slice(1).join(',');
  run('ffmpeg', '-v', 'error', '-y', ...slides, '-f', 'lavfi', '-i', 'sine=frequency=300', '-filter_complex',
    colours.map((_, at) => `[${at}]`).join('') + `concat=n=${colours.length}[v]`, '-map', '[v]', '-map', `${colours.length}:a`,
    '-t', String(colours.length * seconds), '-c:v', 'libx264', '-preset', 'ultrafast', '-bf', '0', '-pix_fmt', 'yuv420p',
    ...(begins ? ['-force_key_frames', begins] : []), '-c:a', 'aac', '-movflags', '+faststart', movie);
  return movie;
}

let common = null;
const commonMovie = () => common ??= makeMovie();

/** The publisher's own text form: slashes and everything outside printable ASCII escaped. */
export function jsonText(value) {
  return JSON.stringify(value).replace(/\//g, '\\/')
    .replace(/[^\x20-\x7e]/g, (unit) => '\\u' + unit.charCodeAt(0).toString(16).toUpperCase().padStart(4, '0'));
}

export function entriesOf(titles, seconds = SECONDS) {
  return titles.map((title, at) => ({ id: String(at + 1), time: String(at * seconds * 1000), title, indent: '0',
    sn: String(at + 1) }));
}

export class Publication {
  /** config overrides keys of config.js; quiz and captions are the lists of their files; movie is a file. */
  constructor({ titles = TITLES, config = {}, quiz = [], captions = null, movie = commonMovie() } = {}) {
    this.folder = path.join(root, `课件 week ${++folders}.ktr.mp4(1)`);
    fs.cpSync(INSTALL, this.folder, { recursive: true });
    fs.renameSync(this.file('author_120.png'), this.file('author.png'));
    fs.copyFileSync(movie, this.file('media.mp4'));
    run('ffmpeg', '-v', 'error', '-y', '-i', movie, '-frames:v', '1', this.file('cover.jpg'));
    const whole = { title: 'A Lecture', poster: 'cover.jpg', author: { name: 'Anna Keller', photo: 'author.png' },
      width: 640, height: 360, hideSN: 0, duration: '00:40',
      src: [{ src: 'media.mp4', size: { width: 640, height: 360 } }], index: entriesOf(titles), ...config };
    this.write('config.js', 'var config = ' + jsonText(whole));
    this.write('ques_config.js', `var quiz = ${jsonText(quiz)};var quizLang = ${jsonText({ submit: 'Submit',
      continue: 'Continue', bypass: 'Skip', right: 'Right', choose: 'Choose an answer', hide: 'Hide',
      quizResizer: 'Resize', wrongAnswer: 'Wrong answer', showAnswer: 'Show answer' })};`);
    if (captions) this.write('captions.js', 'var captions = ' + jsonText(captions) + ';');
    fs.appendFileSync(this.file('index.html'), '\r\n<!-- Kestrum 1.0 --!>');
  }

  file(name) { return path.join(this.folder, name); }
  write(name, text) { fs.writeFileSync(this.file(name), text, 'latin1'); }
  remove(name) { fs.rmSync(this.file(name)); }
  get address() { return pathToFileURL(this.file('index.html')).href; }
}

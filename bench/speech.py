#!/usr/bin/python3
"""Is recorded speech as intelligible as what was said? Speech of several voices is played to the microphone of a private
sound server, recorded by Kestrum at 32 (which is what it does if nothing else is said), 64 and 96 kbit/s at the same time,
and compared with what was played; beside it the same sound through codecs alone, and through the sound server alone.

    bench/speech.py [FOLDER]        keeps the sounds there

Told is STOI against the clean voice (stoi.py; 1 is as intelligible), and of the voices that a recogniser understands its
word error rate. Both are told of the input too: what counts is what the recording loses against that.

Needs python3-numpy, espeak-ng, flite and ffmpeg with libopus; asterisk-core-sounds-en-g722 for a voice that a person spoke
into a microphone, and pocketsphinx with pocketsphinx-en-us for the word error rate, each left out where it is missing.
"""
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

import numpy

import surroundings
from stoi import RATE as STOI_RATE
from stoi import self_test, stoi

RATE = 48000
PAUSE = 0.4  # seconds between two sentences
SNR = 15  # dB of speech above the noise of the room
LOUDNESS = 0.08  # root mean square of a sentence, full scale is 1
SENTENCES = [
    "today we look at how a database finds one record among ten million without reading all of them",
    "the index on this slide is a balanced tree and each node fits exactly into one page of the disk",
    "please compare the second column with the third one because that is where the error was made",
    "if the temperature rises by five degrees the reaction takes about half as long",
    "a matrix is invertible if and only if its determinant is different from zero",
    "the protein folds within a few milliseconds which nobody could explain for thirty years",
    "in the next chapter we prove that the algorithm always stops after a finite number of steps",
    "remember that voltage divided by resistance gives the current through this branch",
    "what the court decided in that case has changed how a contract is read ever since",
    "the slope of the curve at this point tells us how quickly the population grows",
    "thirteen and thirty sound alike so write down the number that you see on the screen",
    "that is all for this week and the exercises are due on friday before noon",
]
SYNTHETIC = [("espeak-ng", voice, speed) for voice, speed in
             (("en-us", 130), ("en-gb", 160), ("en-us+f3", 175), ("en-gb-scotland", 190))]
SAMPLED = [("flite", voice, None) for voice in ("slt", "rms", "awb")]
PROMPTS = pathlib.Path("/usr/share/asterisk/sounds/en_US_f_Allison")
PROMPT_NAMES = ["demo-congrats", "tt-allbusy", "dir-intro", "queue-periodic-announce"]
MODEL = pathlib.Path("/usr/share/pocketsphinx/model/en-us")
KBPS = (32, 64, 96)


def tool(*command, **more):
    return subprocess.run([str(word) for word in command], check=True, capture_output=True, **more).stdout


def sound_of(file, *input_options, rate=RATE):
    """The samples of a file's sound, one channel."""
    raw = tool("ffmpeg", "-v", "error", *input_options, "-i", file, "-map", "0:a", "-ac", 1, "-ar", rate, "-f", "f32le", "-")
    return numpy.frombuffer(raw, dtype="<f4").astype(float)


def save(file, samples, rate=RATE):
    tool("ffmpeg", "-v", "error", "-y", "-f", "f32le", "-ar", rate, "-ac", 1, "-i", "-", file,
         input=samples.astype("<f4").tobytes())


class Sentence:
    """What is said, when it begins in the whole, and its clean sound."""

    def __init__(self, group, words, clean, noisy=False):
        self.group, self.words, self.noisy = group, words, noisy
        loud = numpy.abs(clean) > 0.01 * numpy.abs(clean).max()
        self.clean = clean * LOUDNESS / numpy.sqrt(numpy.mean(clean[loud] ** 2))
        self.begin = None


def spoken(engine, voice, speed, text, folder):
    file = folder / "said.wav"
    if engine == "flite":
        tool("flite", "-voice", voice, "-t", text, "-o", file)
    else:
        tool("espeak-ng", "-v", voice, "-s", speed, "-w", file, text)
    return sound_of(file)


def sentences(folder):
    """A third of the sentences for each voice, then some of them again with noise."""
    clean = []
    for group, voices in (("espeak-ng", SYNTHETIC), ("flite", SAMPLED)):
        for number, (engine, voice, speed) in enumerate(voices):
            clean += [Sentence(group, text, spoken(engine, voice, speed, text, folder))
                      for text in SENTENCES[number % 3::3]]
    if PROMPTS.exists():
        clean += [Sentence("a person", None, sound_of(PROMPTS / f"{name}.g722")) for name in PROMPT_NAMES]
    again = [Sentence(one.group, one.words, one.clean, True) for one in clean[::2]]
    return clean + again


def pink_noise(count):
    """Like a room with a fan: each octave as strong as the next."""
    spectrum = numpy.fft.rfft(numpy.random.default_rng(7).standard_normal(count))
    spectrum /= numpy.sqrt(numpy.maximum(numpy.arange(len(spectrum)), 40 * count / RATE))
    noise = numpy.fft.irfft(spectrum, count)
    return noise / numpy.sqrt(numpy.mean(noise ** 2))


def joined(parts):
    """All sentences one after the other as they are played."""
    pause = numpy.zeros(int(PAUSE * RATE))
    whole, at = [pause, pause], 2 * len(pause)
    for part in parts:
        part.begin = at
        said = part.clean
        if part.noisy:
            said = said + pink_noise(len(said)) * LOUDNESS * 10 ** (-SNR / 20)
        whole += [said, pause]
        at += len(said) + len(pause)
    return numpy.concatenate(whole + [pause, pause])


def record(played, length, folder):
    """The recordings of one playback, by name."""
    recorders = {f"Kestrum {kbps}": surroundings.Recorder(folder / f"kestrum{kbps}.ktr", kbps=kbps) for kbps in KBPS}
    plain = subprocess.Popen(["parec", "-d", "mic", f"--rate={RATE}", "--channels=1", "--file-format=wav",
                              folder / "path.wav"])
    time.sleep(2)
    subprocess.run(["paplay", "-d", "micbus", played], check=True, timeout=length + 60)
    time.sleep(2)
    plain.terminate()
    plain.wait()
    for recorder in recorders.values():
        recorder.stop()
    files = {f"Kestrum {kbps}": folder / f"kestrum{kbps}.ktr" for kbps in KBPS}
    return {**files, "sound server": folder / "path.wav"}


def encoded(played, folder):
    """The peers: codecs alone, by name."""
    for name, options in (("aac32.mka", ("-c:a", "aac")), ("opus32.mka", ("-c:a", "libopus"))):
        tool("ffmpeg", "-v", "error", "-y", "-i", played, "-ac", 1, *options, "-b:a", "32k", folder / name)
    return {"ffmpeg AAC 32": folder / "aac32.mka", "Opus 32": folder / "opus32.mka"}


def lag(reference, signal):
    """So many samples later the reference is found in the signal (sub-sample places are rounded)."""
    size = 1 << (len(reference) + len(signal)).bit_length()
    match = numpy.fft.irfft(numpy.conj(numpy.fft.rfft(reference, size)) * numpy.fft.rfft(signal, size), size)
    at = int(match.argmax())
    return at if at < len(signal) else at - size


def in_step(parts, whole, signal):
    """Each sentence's stretch of the signal, second by second at its place, and by how much the sentences' places lie
    apart, ms. A recorder that keeps step with the clock moves the sound of a card that runs at a pace of its own."""
    coarse = lag(whole, signal)
    padded = numpy.concatenate([numpy.zeros(RATE), signal, numpy.zeros(2 * RATE)])

    def place(begin, end, about, margin):
        first = RATE + begin + about - margin
        return about - margin + lag(whole[begin:end], padded[first:first + end - begin + 2 * margin])

    stretches, places = [], []
    for part in parts:
        end = part.begin + len(part.clean)
        places.append(place(part.begin, end, coarse, RATE // 10))
        pieces, at = [], places[-1]
        edges = [*range(part.begin, max(part.begin + 1, end - RATE // 2), RATE), end]
        for begin, stop in zip(edges, edges[1:]):
            at = place(begin, stop, at, RATE // 100)
            pieces.append(padded[RATE + begin + at:RATE + stop + at])
        stretches.append(numpy.concatenate(pieces))
    return stretches, 1000 * (max(places) - min(places)) / RATE


def resampled(samples, rate):
    count = len(samples) * rate // RATE
    return numpy.fft.irfft(numpy.fft.rfft(samples)[:count // 2 + 1], count) * count / len(samples)


def intelligibility(parts, stretches):
    cleans = numpy.concatenate([resampled(part.clean, STOI_RATE) for part in parts])
    return stoi(cleans, numpy.concatenate([resampled(stretch, STOI_RATE) for stretch in stretches]))


def edits(said, heard):
    """Words to put in, take out or exchange."""
    row = list(range(len(heard) + 1))
    for i, word in enumerate(said, 1):
        last, row = row, [i]
        for j, other in enumerate(heard, 1):
            row.append(min(last[j] + 1, row[j - 1] + 1, last[j - 1] + (word != other)))
    return row[-1]


def recognised(stretches, folder):
    """What a recogniser understands of each, as words."""
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir()
    names = [f"s{number:03}" for number in range(len(stretches))]
    for name, stretch in zip(names, stretches):
        samples = resampled(numpy.concatenate([stretch, numpy.zeros(RATE // 4)]), 16000)
        (folder / f"{name}.raw").write_bytes((numpy.clip(samples, -1, 1) * 32767).astype("<i2").tobytes())
    (folder / "list").write_text("\n".join(names) + "\n")
    tool("pocketsphinx_batch", "-fwdflat", "no", "-bestpath", "no", "-hmm", MODEL / "en-us", "-lm", MODEL / "en-us.lm.bin",
         "-dict", MODEL / "cmudict-en-us.dict", "-ctl", folder / "list", "-cepdir", folder, "-cepext", ".raw", "-adcin", "yes",
         "-hyp", folder / "heard")
    return [line.rsplit("(", 1)[0].split() for line in (folder / "heard").read_text().splitlines()]


def word_errors(parts, ways, folder):
    """Share of the words that are wrong, of the voices that a recogniser can be expected to understand."""
    chosen = [at for at, part in enumerate(parts) if part.group != "espeak-ng"]
    print(f"\n{'words':<16}{'wrong':>8}{'of':>6}{'rate':>8}   unlike those of the input (a person's too)", flush=True)
    input_heard = None
    for name, stretches in ways.items():
        heard = recognised([stretches[at] for at in chosen], folder / "words")
        input_heard = input_heard or heard
        known = [(parts[at].words.split(), words) for at, words in zip(chosen, heard) if parts[at].words]
        wrong, count = sum(edits(*pair) for pair in known), sum(len(said) for said, _ in known)
        unlike = sum(map(edits, input_heard, heard))
        print(f"{name:<16}{wrong:8}{count:6}{wrong / count:8.1%}{unlike:8} of {sum(map(len, input_heard))}", flush=True)


def run(folder):
    parts = sentences(folder)
    whole = joined(parts)
    print("STOI of speech with white noise:", ", ".join(
        f"{snr} dB {told:.3f}" for snr, told in self_test(resampled(parts[0].clean, STOI_RATE))))
    played = folder / "played.wav"
    save(played, whole)
    print(f"{len(parts)} sentences, {len(whole) / RATE:.0f} s; noise {SNR} dB below the speech", flush=True)
    files = {"input": played, **record(played, len(whole) / RATE, folder), **encoded(played, folder)}
    groups = [(group, noisy) for noisy in (False, True) for group in dict.fromkeys(part.group for part in parts)]
    print(f"{'':<16}" + "".join(f"{group + (', noise' if noisy else ''):>18}" for group, noisy in groups) + "   kbit/s")
    ways = {}
    for name, file in files.items():
        stretches, apart = in_step(parts, whole, sound_of(file))
        ways[name] = stretches
        told = []
        for key in groups:
            those = [at for at, part in enumerate(parts) if (part.group, part.noisy) == key]
            told.append(intelligibility([parts[at] for at in those], [stretches[at] for at in those]))
        print(f"{name:<16}" + "".join(f"{value:18.4f}" for value in told) +
              f"{sound_kbps(file):9.1f}" + (f"   moved by {apart:.0f} ms" if apart > 1 else ""), flush=True)
    if shutil.which("pocketsphinx_batch") and MODEL.exists():
        word_errors(parts, ways, folder)


def sound_kbps(file):
    """What the sound takes in truth, on average."""
    rows = tool("ffprobe", "-v", "error", "-select_streams", "a:0", "-show_entries", "packet=pts_time,size", "-of", "csv=p=0",
                file, text=True).split()
    sizes = [int(row.split(",")[1]) for row in rows]
    return 8 * sum(sizes) / max(float(rows[-1].split(",")[0]), 1) / 1000


def main(arguments):
    if arguments[:1] == ["--inside"]:
        return run(pathlib.Path(arguments[1]))
    surroundings.build("record_bench")
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(arguments[0] if arguments else name)
        folder.mkdir(exist_ok=True)
        return surroundings.run_inside(__file__, [folder])


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))

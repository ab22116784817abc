"""Short-time objective intelligibility: C. H. Taal, R. C. Hendriks, R. Heusdens, J. Jensen, "An Algorithm for
Intelligibility Prediction of Time-Frequency Weighted Noisy Speech", IEEE Transactions on Audio, Speech, and Language
Processing 19 (2011).

Compares speech that was worked on with the clean speech, sample by sample in step: 1 is as intelligible, below about 0.6
few words are understood. It sees 150 Hz to 4.3 kHz and changes within 384 ms; the loudness of the whole plays no part.
"""
import numpy

RATE = 10000
_FRAME, _HOP, _FFT = 256, 128, 512
_BANDS, _LOWEST = 15, 150
_SEGMENT = 30  # frames, 384 ms
_SILENCE_DB = 40  # frames of clean speech so far below the loudest are left out
_LOWER_BOUND_DB = -15  # signal to distortion; what is worse counts as that
_WINDOW = numpy.hanning(_FRAME + 2)[1:-1]


def _frames(signal):
    return numpy.lib.stride_tricks.sliding_window_view(signal, _FRAME)[::_HOP] * _WINDOW


def _joined(frames):
    signal = numpy.zeros((len(frames) - 1) * _HOP + _FRAME)
    for i, frame in enumerate(frames):
        signal[i * _HOP:i * _HOP + _FRAME] += frame
    return signal


def _without_silence(clean, other):
    clean, other = _frames(clean), _frames(other)
    level = 20 * numpy.log10(numpy.linalg.norm(clean, axis=1) + 1e-12)
    loud = level > level.max() - _SILENCE_DB
    return _joined(clean[loud]), _joined(other[loud])


def _band_matrix():
    """Which bins of the transform lie in which third of an octave."""
    at = numpy.arange(_FFT // 2 + 1) * RATE / _FFT
    centres = _LOWEST * 2 ** (numpy.arange(_BANDS) / 3)
    edges = [(numpy.abs(at - centre * 2 ** (-1 / 6)).argmin(), numpy.abs(at - centre * 2 ** (1 / 6)).argmin())
             for centre in centres]
    return numpy.array([[low <= bin_ < high for bin_ in range(len(at))] for low, high in edges], dtype=float)


_BANDS_OF_BINS = _band_matrix().T


def _bands(signal):
    power = numpy.abs(numpy.fft.rfft(_frames(signal), _FFT)) ** 2
    return numpy.sqrt(power @ _BANDS_OF_BINS).T  # band, frame


def _length(segments):
    return numpy.sqrt((segments ** 2).sum(axis=2, keepdims=True))


def stoi(clean, other):
    """Of two signals at RATE of the same length, in step."""
    x, y = (numpy.lib.stride_tricks.sliding_window_view(_bands(signal), _SEGMENT, axis=1)
            for signal in _without_silence(clean, other))  # band, segment, frame
    worst = 1 + 10 ** (-_LOWER_BOUND_DB / 20)
    y = numpy.minimum(y * _length(x) / (_length(y) + 1e-12), x * worst)
    x, y = x - x.mean(axis=2, keepdims=True), y - y.mean(axis=2, keepdims=True)
    return float(numpy.mean((x * y).sum(axis=2, keepdims=True) / (_length(x) * _length(y) + 1e-12)))


def self_test(speech):
    """The measure on speech with known faults: 1 for the same at any loudness, ever less for more noise."""
    random = numpy.random.default_rng(1)
    noise = random.standard_normal(len(speech))
    loudness = numpy.linalg.norm(speech) / numpy.linalg.norm(noise)
    assert abs(stoi(speech, speech) - 1) < 1e-6 and abs(stoi(speech, speech / 7) - 1) < 1e-6
    told = [(snr, stoi(speech, speech + noise * loudness * 10 ** (-snr / 20))) for snr in (30, 20, 10, 5, 0, -5, -10)]
    assert all(one[1] > next_[1] for one, next_ in zip(told, told[1:])), told
    assert told[0][1] > 0.97 and told[-1][1] < 0.65 and stoi(speech, noise) < 0.5, told
    return told

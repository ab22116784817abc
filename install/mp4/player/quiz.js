// Questions. quiz in ques_config.js is a list of items {time (ms), question, type ("single" or "multiple"), answers: [{text,
// right}]}; each is asked once, when the lecture plays past its time. quizLang beside it holds the words on the buttons.
(function (player) {
  'use strict';

  const { byId, element } = player.tools;
  // More than this at once is a jump, and a jump asks nothing.
  const STEP_MS = 2000;

  const isRight = (value) => value === true || value === 1 || value === '1' || value === 'true';

  function readItem(item) {
    if (!item || !Array.isArray(item.answers)) return null;
    const answers = item.answers.filter((answer) => answer && answer.text !== undefined && answer.text !== null)
      .map((answer) => ({ text: String(answer.text), right: isRight(answer.right) }));
    const time = Number(item.time);
    if (!item.question || answers.length === 0 || !(time >= 0)) return null;
    const several = item.type === 'multiple' || answers.filter((answer) => answer.right).length > 1;
    return { time, question: String(item.question), several, answers, asked: false };
  }

  /// Shows one item; done() is called when the reader is finished with it.
  function makeBoard(words) {
    const dialog = byId('quiz-dialog');
    const said = byId('quiz-said');
    let item = null;
    let done = () => {};

    const boxes = () => [...byId('quiz-answers').querySelectorAll('input')];

    function show(parts) {
      for (const part of ['skip', 'submit', 'show', 'continue']) byId('quiz-' + part).hidden = !parts.includes(part);
    }

    function answerRow(answer) {
      const row = element('li');
      const label = element('label', 'choice');
      const box = element('input');
      const text = element('span', '', answer.text);
      box.type = item.several ? 'checkbox' : 'radio';
      box.name = 'answer';
      text.dir = 'auto';
      label.append(box, ' ', text);
      row.append(label);
      return row;
    }

    function fold(away) {
      dialog.classList.toggle('folded', away);
      byId('quiz-body').hidden = away;
      byId('quiz-hide').textContent = away ? words.quizResizer : words.hide;
      byId('quiz-hide').setAttribute('aria-expanded', String(!away));
    }

    function check(event) {
      event.preventDefault();
      fold(false);
      if (!boxes().some((box) => box.checked)) {
        said.textContent = words.choose;
        return;
      }
      const right = boxes().every((box, at) => box.checked === item.answers[at].right);
      said.textContent = right ? words.right : words.wrongAnswer;
      said.classList.toggle('wrong', !right);
      for (const box of boxes()) box.disabled = true;
      show(right ? ['continue'] : ['show', 'continue']);
      byId('quiz-continue').focus();
    }

    function showAnswer() {
      [...byId('quiz-answers').children].forEach((row, at) => {
        if (!item.answers[at].right) return;
        row.classList.add('right');
        row.firstChild.append(element('span', 'verdict', '✓ ' + words.right));
      });
      show(['continue']);
      byId('quiz-continue').focus();
    }

    function ask(asked, onDone) {
      item = asked;
      done = onDone;
      byId('quiz-question').textContent = item.question;
      byId('quiz-answers').replaceChildren(...item.answers.map(answerRow));
      said.textContent = '';
      said.classList.remove('wrong');
      fold(false);
      show(['skip', 'submit']);
      dialog.showModal();
      byId('quiz-question').focus();
    }

    for (const [id, word] of [['submit', 'submit'], ['continue', 'continue'], ['skip', 'bypass'], ['show', 'showAnswer']]) {
      byId('quiz-' + id).textContent = words[word];
    }
    byId('quiz-form').addEventListener('submit', check);
    byId('quiz-show').addEventListener('click', showAnswer);
    byId('quiz-hide').addEventListener('click', () => fold(!dialog.classList.contains('folded')));
    for (const id of ['quiz-skip', 'quiz-continue']) byId(id).addEventListener('click', () => dialog.close());
    dialog.addEventListener('close', () => done());
    return { ask, isOpen: () => dialog.open };
  }

  /// Without items nothing is set up.
  function makeQuiz(stage, quiz, quizLang) {
    const items = (Array.isArray(quiz) ? quiz : []).map(readItem).filter((item) => item !== null)
      .sort((one, other) => one.time - other.time);
    if (items.length === 0) return;
    const { video } = stage;
    const board = makeBoard({ ...player.texts.quiz, ...quizLang });
    let before = 0;

    function ask(item) {
      item.asked = true;
      video.pause();
      if (document.pictureInPictureElement) document.exitPictureInPicture().catch(() => { /* it is closed already */ });
      board.ask(item, stage.play);
    }

    video.addEventListener('timeupdate', () => {
      const ms = stage.now();
      const from = before;
      before = ms;
      if (board.isOpen() || video.seeking || ms < from || ms - from > STEP_MS * video.playbackRate) return;
      const due = items.find((item) => !item.asked && item.time >= from && item.time <= ms);
      if (due) ask(due);
    });
    video.addEventListener('seeked', () => { before = stage.now(); });
  }

  player.makeQuiz = makeQuiz;
})(window.player = window.player || {});

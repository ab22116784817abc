// What the page says, in the reader's language. Texts with something to fill in are functions.
(function (player) {
  'use strict';

  // A title keeps its direction to itself, where it stands in a sentence that is no element of its own.
  const apart = (title) => '\u2068' + title + '\u2069';

  const en = {
    tag: 'en', skip: 'Skip to the slides', controls: 'Playback', previous: 'Previous slide', next: 'Next slide',
    play: 'Play', pause: 'Pause', mute: 'Mute', volume: 'Volume', speed: 'Speed', captions: 'Captions',
    noCaptions: 'No captions', position: 'Position', window: 'Picture in picture', full: 'Full screen',
    dark: 'Dark colours', slides: 'Slides', search: 'Search the slides', untitled: '(without a title)',
    noHit: 'No slide has this text.', close: 'Close', keys: 'Keyboard', singleKeys: 'Single letters and signs work as keys',
    link: 'Link', linkTo: 'The link opens', linkBegin: 'the lecture from its beginning', address: 'Address',
    copy: 'Copy link', copied: 'The link is copied.', copyYourself: 'Press Ctrl+C to copy the marked address.',
    linkSlide: (sn, title) => 'slide ' + sn + ': ' + apart(title),
    linkTime: (time) => 'this moment, ' + time,
    count: (n) => n === 1 ? '1 slide' : n + ' slides', hits: (n, all) => n + ' of ' + all,
    now: (sn, all) => sn + ' / ' + all,
    at: (time, whole) => time + ' of ' + whole, atSlide: (sn, title) => ', slide ' + sn + ': ' + apart(title),
    track: (n) => 'Captions ' + n,
    resumed: (time) => 'Continued where you left off, at ' + time + '.', fromBegin: 'Start from the beginning',
    loading: (percent) => 'This server cannot jump inside a movie, so the whole movie is being loaded: ' + percent,
    noJump: 'This server cannot jump inside a movie, and loading all of it failed. The lecture plays from its beginning only.',
    incomplete: 'This publication is not complete: it was cancelled, failed or is still being made. Publish the lecture again.',
    noMovie: (name) => 'The movie cannot be played. Check that ' + name + ' lies beside this page, and try another browser.',
    broken: 'The movie broke off. Check the connection, then try again.', again: 'Try again',
    keyNames: { ' ': 'Space', ArrowLeft: '←', ArrowRight: '→', PageUp: 'Page Up', PageDown: 'Page Down', Home: 'Home',
      End: 'End' },
    acts: { play: 'Play or pause', back: '5 seconds back', on: '5 seconds on', farBack: '10 seconds back',
      farOn: '10 seconds on', previous: 'Slide before, or to its beginning', next: 'Next slide', begin: 'To the beginning',
      last: 'To the last slide', slower: 'Slower', faster: 'Faster', quieter: 'Quieter', louder: 'Louder',
      mute: 'Sound off or on', captions: 'Captions on or off', full: 'Full screen', window: 'Picture in picture',
      link: 'Link to here', search: 'Search', look: 'Dark or light', keys: 'This list' },
    quiz: { submit: 'Submit', continue: 'Continue', bypass: 'Skip', right: 'Right', choose: 'Choose an answer',
      hide: 'Hide', quizResizer: 'Resize', wrongAnswer: 'Wrong answer', showAnswer: 'Show answer' }
  };

  const zh = {
    tag: 'zh-Hans', skip: '跳到幻灯片目录', controls: '播放', previous: '上一张', next: '下一张',
    play: '播放', pause: '暂停', mute: '静音', volume: '音量', speed: '速度', captions: '字幕',
    noCaptions: '无字幕', position: '位置', window: '画中画', full: '全屏',
    dark: '深色', slides: '幻灯片', search: '搜索幻灯片', untitled: '(无标题)',
    noHit: '没有包含此文字的幻灯片。', close: '关闭', keys: '键盘', singleKeys: '启用单个字母和符号快捷键',
    link: '链接', linkTo: '链接打开', linkBegin: '从课程开头', address: '地址',
    copy: '复制链接', copied: '链接已复制。', copyYourself: '请按 Ctrl+C 复制选中的地址。',
    linkSlide: (sn, title) => '第 ' + sn + ' 张:' + apart(title),
    linkTime: (time) => '此刻,' + time,
    count: (n) => n + ' 张', hits: (n, all) => n + ' / ' + all,
    now: (sn, all) => sn + ' / ' + all,
    at: (time, whole) => time + ' / ' + whole, atSlide: (sn, title) => ',第 ' + sn + ' 张:' + apart(title),
    track: (n) => '字幕 ' + n,
    resumed: (time) => '已从上次的位置 ' + time + ' 继续。', fromBegin: '从头开始',
    loading: (percent) => '此服务器不支持在视频内跳转,正在加载整个视频:' + percent,
    noJump: '此服务器不支持在视频内跳转,且无法加载整个视频。课程只能从头播放。',
    incomplete: '此发布不完整:已取消、失败或仍在制作中。请重新发布课程。',
    noMovie: (name) => '无法播放视频。请检查 ' + name + ' 是否与本页在同一文件夹,或换一个浏览器。',
    broken: '视频中断。请检查网络连接后重试。', again: '重试',
    keyNames: { ' ': '空格', ArrowLeft: '←', ArrowRight: '→', PageUp: 'Page Up', PageDown: 'Page Down', Home: 'Home',
      End: 'End' },
    acts: { play: '播放或暂停', back: '后退 5 秒', on: '前进 5 秒', farBack: '后退 10 秒', farOn: '前进 10 秒',
      previous: '上一张,或回到本张开头', next: '下一张', begin: '到开头', last: '到最后一张', slower: '减速', faster: '加速',
      quieter: '减小音量', louder: '增大音量', mute: '静音', captions: '字幕', full: '全屏', window: '画中画',
      link: '链接到此处', search: '搜索', look: '深色或浅色', keys: '此列表' },
    quiz: { submit: '提交', continue: '继续', bypass: '跳过', right: '正确', choose: '请选择答案', hide: '隐藏',
      quizResizer: '还原', wrongAnswer: '回答错误', showAnswer: '显示答案' }
  };

  player.texts = /^zh/i.test(navigator.language || '') ? zh : en;
})(window.player = window.player || {});

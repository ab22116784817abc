// The project's cursor: shows its picture as the pointer over the player if the project asks for it.
'use strict';

function ksShowCursor(player, project) {
    const flag = project.querySelector('configure > showcursor');
    player.style.cursor = flag && flag.textContent.trim() === '1' ? "url('icons/cursor.gif'), auto" : 'auto';
}

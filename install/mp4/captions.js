var captions = [];

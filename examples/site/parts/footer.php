<div class="foot old">
<?php foreach ($links as $link): ?>
  <a href="<?= $link['url'] ?>" class="old"><?= $link['text'] ?></a>
<?php endforeach ?>
<b>Since <?= $year ?></b> <img src="/i/<?= $logo ?>.png" alt="logo">
</div>

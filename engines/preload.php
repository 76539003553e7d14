<?php
// What a server may compile before its first request: a class that holds and makes objects of ours, and
// a report that was asked for meanwhile.
declare(strict_types=1);

final class Preloaded
{
    public function __construct(private vt_mrel $parser = new vt_mrel(), public ?vt_mrel_itr $rows = null)
    {
        $this->rows ??= new vt_mrel_itr();
    }

    public function total(): int
    {
        return $this->parser->msgs_per_day(1, 2, ' ', $this->rows->getHandle());
    }
}

(new Preloaded())->total();
